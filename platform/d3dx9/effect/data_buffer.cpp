// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/data_buffer.hpp"

namespace VornPlatform {

namespace {

class DataBuffer final : public CountedObject<ID3DXBuffer> {
public:
    explicit DataBuffer(std::vector<std::byte> bytes)
        : CountedObject(ObjectKind::DataBuffer), mBytes(std::move(bytes)) {}

    void* GetBufferPointer() override {
        const CallScope call("GetBufferPointer");
        return mBytes.data();
    }
    DWORD GetBufferSize() override {
        const CallScope call("GetBufferSize");
        return static_cast<DWORD>(mBytes.size());
    }

private:
    std::vector<std::byte> mBytes;
};

} // namespace

ID3DXBuffer* MakeDataBuffer(const void* data, std::size_t bytes) {
    const auto* from = static_cast<const std::byte*>(data);
    return new DataBuffer(std::vector<std::byte>(from, from + bytes));
}

ID3DXBuffer* MakeTextBuffer(const std::string& text) {
    return MakeDataBuffer(text.c_str(), text.size() + 1);
}

} // namespace VornPlatform
