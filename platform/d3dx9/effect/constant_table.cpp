// SPDX-License-Identifier: MIT
//
// Names for registers. An element of an array begins at a register of its own; a matrix has its
// columns there, or its rows if it is row-major.
#include "platform/d3dx9/effect/constant_table.hpp"

#include "platform/d3dx9/counted_object.hpp"
#include "platform/d3dx9/effect/number_bits.hpp"
#include "platform/d3dx9/effect/places.hpp"
#include "platform/d3dx9/effect/transpose.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// Where numbers come from: elements and rows of them lie so many floats apart.
struct Numbers {
    const float* values;
    UINT elementStride, rowStride;
};

class ConstantTable final : public CountedObject<ID3DXConstantTable> {
public:
    explicit ConstantTable(std::shared_ptr<const CompiledShader> shader)
        : CountedObject(ObjectKind::ConstantTable), mShader(std::move(shader)),
          mPlaces(mShader->constants) {}

    D3DXHANDLE GetConstantByName(D3DXHANDLE parent, LPCSTR name) override {
        const CallScope call("GetConstantByName", names().Text(parent), name);
        try {
            return names().Handle(mPlaces.FindIn(parent, name));
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

    HRESULT SetMatrix(IDirect3DDevice9* device, D3DXHANDLE constant,
                      const D3DXMATRIX* matrix) override {
        const D3DMATRIX* from = matrix;
        const CallScope call("SetMatrix", device, names().Text(constant), from);
        return setMatrices(device, find(constant), matrix, 1);
    }
    HRESULT SetMatrixArray(IDirect3DDevice9* device, D3DXHANDLE constant,
                           const D3DXMATRIX* matrices, UINT count) override {
        const Place* place = find(constant);
        const FloatRows rows = {matrices ? &matrices->m[0][0] : nullptr, read(place, count), 16};
        const CallScope call("SetMatrixArray", device, names().Text(constant), rows, count);
        return setMatrices(device, place, matrices, count);
    }
    HRESULT SetFloat(IDirect3DDevice9* device, D3DXHANDLE constant, float value) override {
        const CallScope call("SetFloat", device, names().Text(constant), value);
        return setFloats(device, find(constant), &value, 1);
    }
    HRESULT SetFloatArray(IDirect3DDevice9* device, D3DXHANDLE constant, const float* values,
                          UINT count) override {
        const Place* place = find(constant);
        const FloatRows row = {values, 1, place ? std::min(count, place->numbers) : 0, false};
        const CallScope call("SetFloatArray", device, names().Text(constant), row, count);
        return setFloats(device, place, values, count);
    }
    HRESULT SetVector(IDirect3DDevice9* device, D3DXHANDLE constant,
                      const D3DXVECTOR4* vector) override {
        const FloatRows row = {vector ? &vector->x : nullptr, 1, 4, false};
        const CallScope call("SetVector", device, names().Text(constant), row);
        return setVectors(device, find(constant), vector, 1);
    }
    HRESULT SetVectorArray(IDirect3DDevice9* device, D3DXHANDLE constant,
                           const D3DXVECTOR4* vectors, UINT count) override {
        const Place* place = find(constant);
        const FloatRows rows = {vectors ? &vectors->x : nullptr, read(place, count), 4};
        const CallScope call("SetVectorArray", device, names().Text(constant), rows, count);
        return setVectors(device, place, vectors, count);
    }

    HRESULT SetDefaults(IDirect3DDevice9* device) override {
        const CallScope call("SetDefaults", device);
        if (!device)
            return D3DERR_INVALIDCALL;
        HRESULT result = D3D_OK;
        for (std::size_t i = 0; i < mShader->constants.size() && SUCCEEDED(result); ++i)
            result = setDefault(*device, static_cast<int>(i));
        return result;
    }

private:
    // Of one call of the device; more are set by several.
    static constexpr UINT MostRegisters = 64;

    const NameTable& names() const { return mPlaces.Names(); }
    const Place* find(D3DXHANDLE constant) const {
        const int number = names().Find(constant);
        return number < 0 ? nullptr : &mPlaces[number];
    }
    /// Elements that a call with `count` reads.
    static UINT read(const Place* place, UINT count) {
        return place && place->IsNumeric() ? std::min(count, std::max(place->elements, 1u)) : 0;
    }

    HRESULT write(IDirect3DDevice9& device, UINT first, const float* values, UINT count) const {
        return mShader->code->stage == ShaderStage::Vertex
                   ? device.SetVertexShaderConstantF(first, values, count)
                   : device.SetPixelShaderConstantF(first, values, count);
    }

    HRESULT setMatrices(IDirect3DDevice9* device, const Place* place, const D3DXMATRIX* matrices,
                        UINT count) const {
        if (!device || !place || !place->IsMatrix() || (!matrices && count > 0))
            return D3DERR_INVALIDCALL;
        return setElements(*device, *place, 0, count,
                           {matrices ? &matrices->m[0][0] : nullptr, 16, 4});
    }
    HRESULT setVectors(IDirect3DDevice9* device, const Place* place, const D3DXVECTOR4* vectors,
                       UINT count) const {
        if (!device || !place || !place->IsNumeric() || place->IsMatrix() ||
            (!vectors && count > 0))
            return D3DERR_INVALIDCALL;
        return setElements(*device, *place, 0, count, {vectors ? &vectors->x : nullptr, 4, 4});
    }
    // The last element is filled up with zeros.
    HRESULT setFloats(IDirect3DDevice9* device, const Place* place, const float* values,
                      UINT count) const {
        if (!device || !place || !place->IsNumeric() || (!values && count > 0))
            return D3DERR_INVALIDCALL;
        count = std::min(count, place->numbers);
        const UINT width = place->ElementNumbers(), columns = place->constant->columns;
        const UINT whole = count / width, rest = count % width;
        const HRESULT result = setElements(*device, *place, 0, whole, {values, width, columns});
        if (FAILED(result) || rest == 0)
            return result;
        float last[16] = {};
        std::copy_n(values + whole * width, rest, last);
        return setElements(*device, *place, whole, 1, {last, width, columns});
    }

    /// `count` elements from `first` on, as many of them as there are.
    HRESULT setElements(IDirect3DDevice9& device, const Place& place, UINT first, UINT count,
                        const Numbers& from) const {
        const UINT size = ElementRegisters(*place.constant);
        count = std::min(count, std::max(place.elements, 1u) - first);
        float registers[MostRegisters * 4];
        for (UINT done = 0; done < count;) {
            const UINT begin = place.firstRegister + (first + done) * size;
            const UINT now = std::min(count - done, MostRegisters / size);
            for (UINT i = 0; i < now; ++i)
                fill(*place.constant, registers + i * size * 4, from, done + i);
            // An array that the shader uses in part has registers for that part.
            if (begin >= place.endRegister)
                break;
            const HRESULT result =
                write(device, begin, registers, std::min(now * size, place.endRegister - begin));
            if (FAILED(result))
                return result;
            done += now;
        }
        return D3D_OK;
    }

    static void fill(const ShaderConstant& c, float* to, const Numbers& numbers, UINT element) {
        const float* from = numbers.values + std::size_t(element) * numbers.elementStride;
        if (c.rows == 4 && c.columns == 4 && numbers.rowStride == 4 && !c.rowMajor &&
            c.type == ValueType::Float) {
            Transpose(to, from);
            return;
        }
        const bool byColumns = c.valueClass == ValueClass::Matrix && !c.rowMajor;
        std::fill_n(to, ElementRegisters(c) * 4, 0.0f);
        for (UINT row = 0; row < c.rows; ++row)
            for (UINT column = 0; column < c.columns; ++column)
                (byColumns ? to[column * 4 + row] : to[row * 4 + column]) =
                    asType(c.type, from[row * numbers.rowStride + column]);
    }
    /// Registers hold floats, of what is whole or true too.
    static float asType(ValueType type, float number) {
        if (type == ValueType::Float)
            return number;
        return static_cast<float>(std::bit_cast<INT>(BitsOf(type, number)));
    }

    HRESULT setDefault(IDirect3DDevice9& device, int number) const {
        const std::vector<double>& numbers = mPlaces[number].constant->numbers;
        std::size_t at = 0;
        HRESULT result = D3D_OK;
        mPlaces.Visit(number, [&](const Place& leaf) {
            const UINT width = leaf.ElementNumbers();
            for (UINT i = 0; i < leaf.numbers / width && at + width <= numbers.size(); ++i) {
                float values[16] = {};
                for (UINT j = 0; j < width; ++j)
                    values[j] = static_cast<float>(numbers[at++]);
                if (SUCCEEDED(result))
                    result =
                        setElements(device, leaf, i, 1, {values, width, leaf.constant->columns});
            }
        });
        return result;
    }

    const std::shared_ptr<const CompiledShader> mShader;
    const Places mPlaces;
};

} // namespace

ID3DXConstantTable* MakeConstantTable(std::shared_ptr<const CompiledShader> shader) {
    return new ConstantTable(std::move(shader));
}

} // namespace VornPlatform
