// SPDX-License-Identifier: MIT
#include "platform/d3d9/shader_code.hpp"
#include "platform/d3d9/limits.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace VornPlatform {

namespace {

// The first words: version, mark, count of all words, check of these three, check of the rest.
// Whoever hands over something else has at least two words, and nothing is read behind a length
// that the check does not vouch for.
constexpr std::size_t HeaderWords = 5;
constexpr DWORD Mark = 0x564e5253;
constexpr DWORD EndToken = 0x0000ffff; // of Direct3D's own streams, and the last word of ours
constexpr std::size_t MaxWords = 1u << 24;
constexpr UINT MaxBlockSize = 1u << 20;
constexpr BYTE LastUsage = D3DDECLUSAGE_SAMPLE, LastUsageIndex = 15;

DWORD Check(const DWORD* words, std::size_t count) {
    DWORD hash = 2166136261u;
    for (std::size_t i = 0; i < count; ++i)
        hash = (hash ^ words[i]) * 16777619u;
    return hash;
}

class Writer {
public:
    void Number(std::uint64_t number) { mWords.push_back(static_cast<DWORD>(number)); }
    void Text(const std::string& text) {
        Number(text.size());
        const std::size_t at = mWords.size();
        mWords.resize(at + (text.size() + 3) / 4);
        if (!text.empty())
            std::memcpy(&mWords[at], text.data(), text.size());
    }
    std::vector<DWORD>& Words() { return mWords; }

private:
    std::vector<DWORD> mWords;
};

// Behind the end all is 0, and the reader has failed.
class Reader {
public:
    Reader(const DWORD* begin, const DWORD* end) : mNext(begin), mEnd(end) {}

    DWORD Number() {
        if (mNext == mEnd) {
            mFailed = true;
            return 0;
        }
        return *mNext++;
    }
    template <typename T>
    void Number(T& number) {
        const DWORD word = Number();
        mFailed |= word > std::numeric_limits<T>::max();
        number = static_cast<T>(word);
    }
    void Text(std::string& text) {
        const std::size_t size = Number();
        const std::size_t words = (size + 3) / 4;
        if (words > Left()) {
            mFailed = true;
            return;
        }
        text.resize(size);
        if (size)
            std::memcpy(text.data(), mNext, size);
        mNext += words;
    }
    /// Of a list, each entry of which takes a word at least.
    std::size_t Count() {
        const std::size_t count = Number();
        if (count > Left())
            mFailed = true;
        return mFailed ? 0 : count;
    }
    std::size_t Left() const { return static_cast<std::size_t>(mEnd - mNext); }
    bool Done() const { return !mFailed && mNext == mEnd; }

private:
    const DWORD* mNext;
    const DWORD* mEnd;
    bool mFailed = false;
};

void WriteVariables(Writer& writer, const std::vector<ShaderVariable>& variables) {
    writer.Number(variables.size());
    for (const ShaderVariable& variable : variables) {
        writer.Text(variable.name);
        writer.Text(variable.type);
        writer.Number(variable.usage);
        writer.Number(variable.index);
    }
}

void ReadVariables(Reader& reader, std::vector<ShaderVariable>& variables) {
    for (std::size_t count = reader.Count(); count > 0; --count) {
        ShaderVariable& variable = variables.emplace_back();
        reader.Text(variable.name);
        reader.Text(variable.type);
        reader.Number(variable.usage);
        reader.Number(variable.index);
    }
}

ShaderCode ReadShader(Reader& reader) {
    ShaderCode shader;
    shader.version = reader.Number();
    shader.stage = reader.Number() ? ShaderStage::Pixel : ShaderStage::Vertex;
    for (std::string* text : {&shader.structs, &shader.members, &shader.blockName, &shader.body})
        reader.Text(*text);
    shader.blockSize = reader.Number();
    shader.blocksInArray = reader.Number() != 0;
    ReadVariables(reader, shader.inputs);
    ReadVariables(reader, shader.outputs);
    for (std::size_t count = reader.Count(); count > 0; --count) {
        ShaderSampler& sampler = shader.samplers.emplace_back();
        reader.Text(sampler.name);
        sampler.index = reader.Number();
        sampler.kind = static_cast<SamplerKind>(std::min<DWORD>(reader.Number(), 2));
    }
    for (std::size_t count = reader.Count(); count > 0; --count) {
        RegisterCopy& copy = shader.registers.emplace_back();
        copy.registerIndex = reader.Number();
        copy.offset = reader.Number();
        reader.Number(copy.count);
        copy.type = static_cast<RegisterCopy::Type>(std::min<DWORD>(reader.Number(), 2));
    }
    return shader;
}

ShaderStage StageOf(DWORD version) {
    return version >> 16 == 0xfffe ? ShaderStage::Vertex : ShaderStage::Pixel;
}

} // namespace

bool IsSound(const ShaderCode& shader) {
    const auto isVariable = [](const ShaderVariable& variable) {
        return !variable.name.empty() && variable.usage <= LastUsage &&
               variable.index <= LastUsageIndex;
    };
    const auto isSampler = [](const ShaderSampler& sampler) {
        return !sampler.name.empty() && sampler.index < MaxTextures;
    };
    const auto isCopy = [&](const RegisterCopy& copy) {
        return copy.registerIndex < MaxRegisters && copy.count >= 1 && copy.count <= 4 &&
               copy.offset % 4 == 0 && copy.offset < shader.blockSize &&
               copy.count * 4u <= shader.blockSize - copy.offset;
    };
    const bool hasBlock = !shader.members.empty();
    return (shader.version >> 16 == 0xfffe || shader.version >> 16 == 0xffff) &&
           StageOf(shader.version) == shader.stage && !shader.body.empty() &&
           shader.blockSize % 16 == 0 && shader.blockSize <= MaxBlockSize &&
           hasBlock == (shader.blockSize > 0) && hasBlock == !shader.blockName.empty() &&
           std::all_of(shader.inputs.begin(), shader.inputs.end(), isVariable) &&
           std::all_of(shader.outputs.begin(), shader.outputs.end(), isVariable) &&
           std::all_of(shader.samplers.begin(), shader.samplers.end(), isSampler) &&
           std::all_of(shader.registers.begin(), shader.registers.end(), isCopy);
}

std::vector<DWORD> Pack(const ShaderCode& shader) {
    Writer writer;
    for (const DWORD word : {shader.version, Mark, DWORD(0), DWORD(0), DWORD(0), shader.version,
                             static_cast<DWORD>(shader.stage)})
        writer.Number(word);
    for (const std::string* text :
         {&shader.structs, &shader.members, &shader.blockName, &shader.body})
        writer.Text(*text);
    writer.Number(shader.blockSize);
    writer.Number(shader.blocksInArray);
    WriteVariables(writer, shader.inputs);
    WriteVariables(writer, shader.outputs);
    writer.Number(shader.samplers.size());
    for (const ShaderSampler& sampler : shader.samplers) {
        writer.Text(sampler.name);
        writer.Number(sampler.index);
        writer.Number(static_cast<DWORD>(sampler.kind));
    }
    writer.Number(shader.registers.size());
    for (const RegisterCopy& copy : shader.registers)
        for (const DWORD number :
             {DWORD(copy.registerIndex), DWORD(copy.offset), DWORD(copy.count), DWORD(copy.type)})
            writer.Number(number);
    writer.Number(EndToken);

    std::vector<DWORD>& words = writer.Words();
    words[2] = static_cast<DWORD>(words.size());
    words[3] = Check(words.data(), 3);
    words[4] = Check(&words[HeaderWords], words.size() - HeaderWords);
    return std::move(words);
}

std::shared_ptr<const ShaderCode> Unpack(const DWORD* code) {
    if (!code || (code[0] >> 16 != 0xfffe && code[0] >> 16 != 0xffff) || code[1] != Mark)
        return nullptr;
    const std::size_t count = code[2];
    if (code[3] != Check(code, 3) || count <= HeaderWords || count > MaxWords ||
        code[4] != Check(code + HeaderWords, count - HeaderWords) || code[count - 1] != EndToken)
        return nullptr;
    Reader reader(code + HeaderWords, code + count - 1);
    auto shader = std::make_shared<const ShaderCode>(ReadShader(reader));
    if (!reader.Done() || shader->version != code[0] || !IsSound(*shader))
        return nullptr;
    return TheOne(std::move(shader));
}

std::shared_ptr<const ShaderCode> TheOne(std::shared_ptr<const ShaderCode> shader) {
    // Whoever links a program keeps what it is made of, so an entry that nobody holds is of no use.
    static auto& known = *new std::unordered_multimap<std::size_t, std::weak_ptr<const ShaderCode>>;
    const std::size_t hash = std::hash<std::string_view>()(shader->body) ^ shader->version;
    auto [entry, end] = known.equal_range(hash);
    while (entry != end) {
        const auto same = entry->second.lock();
        if (same && *same == *shader)
            return same;
        entry = same ? std::next(entry) : known.erase(entry);
    }
    static std::size_t limit = 64;
    if (known.size() >= limit) {
        std::erase_if(known, [](const auto& other) { return other.second.expired(); });
        limit = 64 + 2 * known.size();
    }
    known.emplace(hash, shader);
    return shader;
}

} // namespace VornPlatform
