// SPDX-License-Identifier: MIT
//
// Values of an effect's parameters. Thousands are set in a frame: what shaders use most, vectors of
// floats and matrices of four rows, has a short road.
#include "platform/d3dx9/effect/effect.hpp"
#include "platform/d3dx9/effect/number_bits.hpp"
#include "platform/d3dx9/effect/transpose.hpp"

#include <algorithm>
#include <cmath>

namespace VornPlatform {

namespace {

/// What a SetValue tells of its bytes: as floats where nothing is known of the parameter.
struct ProgramMemory {
    const void* data;
    UINT bytes;
    const Places* places;
    int place;
};

void AppendNumber(std::string& text, const std::byte* from, ValueType type) {
    if (text.back() != '[')
        text += ", ";
    if (type == ValueType::Float)
        AppendText(text, std::bit_cast<float>(LoadBits(from)));
    else
        AppendText(text, std::bit_cast<INT>(LoadBits(from)));
}

void AppendText(std::string& text, const ProgramMemory& memory) {
    constexpr UINT MostUnknown = 16;
    const auto* from = static_cast<const std::byte*>(memory.data);
    const bool isKnown = memory.place >= 0 && (*memory.places)[memory.place].numbers > 0;
    if (!from || (memory.place >= 0 && !isKnown)) {
        text += from ? "memory" : "null";
        return;
    }
    UINT left = memory.bytes / 4;
    text += '[';
    const auto append = [&](UINT count, ValueType type) {
        for (UINT i = 0; i < count && left > 0; ++i, --left, from += 4)
            AppendNumber(text, from, type);
    };
    if (isKnown)
        memory.places->Visit(memory.place,
                             [&](const Place& leaf) { append(leaf.numbers, leaf.constant->type); });
    else
        append(MostUnknown, ValueType::Float);
    text += ']';
}

struct IntRow {
    const INT* values;
    UINT count;
};
void AppendText(std::string& text, const IntRow& row) {
    if (!row.values) {
        text += "null";
        return;
    }
    text += '[';
    for (UINT i = 0; i < row.count; ++i)
        AppendNumber(text, reinterpret_cast<const std::byte*>(row.values + i), ValueType::Int);
    text += ']';
}

/// That a call with `count` numbers reads.
UINT Read(const Place* place, UINT count) {
    return place ? std::min(count, place->numbers) : 0;
}
UINT ReadElements(const Place* place, UINT count) {
    return place && place->IsNumeric() ? std::min(count, std::max(place->elements, 1u)) : 0;
}

bool IsColorVector(const Place& place) {
    const ShaderConstant& c = *place.constant;
    return c.valueClass == ValueClass::Vector && c.type == ValueType::Float &&
           place.elements == 0 && c.columns >= 3;
}

bool IsPlainMatrix(const Place& place) {
    const ShaderConstant& c = *place.constant;
    return c.rows == 4 && c.columns == 4 && c.vectorStride == 16 && c.type == ValueType::Float;
}

} // namespace

// --- finding

D3DXHANDLE Effect::GetParameterByName(D3DXHANDLE parent, LPCSTR name) {
    const CallScope call("GetParameterByName", names().Text(parent), name);
    try {
        return names().Handle(mPlaces.FindIn(parent, name));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

D3DXHANDLE Effect::GetParameterBySemantic(D3DXHANDLE parent, LPCSTR semantic) {
    const CallScope call("GetParameterBySemantic", names().Text(parent), semantic);
    return names().Handle(mPlaces.FindSemantic(parent, semantic));
}

D3DXHANDLE Effect::GetParameter(D3DXHANDLE parent, UINT index) {
    const CallScope call("GetParameter", names().Text(parent), index);
    return names().Handle(mPlaces.MemberOf(parent, index));
}

// --- storing

void Effect::store(const Place& place, UINT number, std::uint32_t bits) {
    StoreBits(&mBlock[place.NumberOffset(number)], bits);
    mBlockChanged = true;
}

void Effect::storeMatrix(const Place& place, UINT element, const float* from) {
    const ShaderConstant& c = *place.constant;
    mBlockChanged = true;
    std::byte* to = &mBlock[place.offset + element * c.elementStride];
    if (IsPlainMatrix(place)) {
        if (c.rowMajor)
            std::memcpy(to, from, sizeof(D3DMATRIX));
        else
            Transpose(reinterpret_cast<float*>(to), from);
        return;
    }
    // The upper left of it.
    const UINT first = element * place.ElementNumbers();
    for (UINT i = 0; i < place.ElementNumbers(); ++i)
        store(place, first + i, BitsOf(c.type, from[i / c.columns * 4 + i % c.columns]));
}

void Effect::storePacked(const Place& place, const std::byte* from) {
    mBlockChanged = true;
    const ShaderConstant& c = *place.constant;
    if (!place.IsMatrix() && place.elements == 0 && c.type != ValueType::Bool) {
        std::memcpy(&mBlock[place.offset], from, place.numbers * 4);
        return;
    }
    if (IsPlainMatrix(place)) {
        for (UINT i = 0; i < std::max(place.elements, 1u); ++i)
            storeMatrix(place, i, reinterpret_cast<const float*>(from + i * sizeof(D3DMATRIX)));
        return;
    }
    for (UINT i = 0; i < place.numbers; ++i, from += 4)
        store(place, i, c.type == ValueType::Bool ? LoadBits(from) != 0 : LoadBits(from));
}

template <typename Number>
HRESULT Effect::setOne(const Place* place, Number value) {
    if (!place || !place->IsOne())
        return D3DERR_INVALIDCALL;
    StoreBits(&mBlock[place->offset], BitsOf(place->constant->type, value));
    mBlockChanged = true;
    return D3D_OK;
}

template <typename Number>
HRESULT Effect::setArray(const Place* place, const Number* values, UINT count) {
    if (!place || !place->IsNumeric() || !values)
        return D3DERR_INVALIDCALL;
    for (UINT i = 0; i < Read(place, count); ++i)
        store(*place, i, BitsOf(place->constant->type, values[i]));
    return D3D_OK;
}

// --- setters

HRESULT Effect::SetValue(D3DXHANDLE parameter, const void* data, UINT bytes) {
    const int number = names().Find(parameter);
    const CallScope call("SetValue", names().Text(parameter),
                         ProgramMemory{data, bytes, &mPlaces, number}, bytes);
    if (number < 0 || !data)
        return D3DERR_INVALIDCALL;
    const Place& place = mPlaces[number];
    if (Held<IDirect3DBaseTexture9>* texture = textureOf(&place)) {
        if (bytes < sizeof(IDirect3DBaseTexture9*))
            return D3DERR_INVALIDCALL;
        IDirect3DBaseTexture9* value = nullptr;
        std::memcpy(&value, data, sizeof value);
        *texture = Hold(value);
        mTexturesChanged = true;
        return D3D_OK;
    }
    if (place.numbers == 0 || bytes / 4 < place.numbers)
        return D3DERR_INVALIDCALL;
    const auto* from = static_cast<const std::byte*>(data);
    mPlaces.Visit(number, [&](const Place& leaf) {
        storePacked(leaf, from);
        from += leaf.numbers * std::size_t(4);
    });
    return D3D_OK;
}

HRESULT Effect::SetBool(D3DXHANDLE parameter, BOOL value) {
    const CallScope call("SetBool", names().Text(parameter), value);
    return setOne<INT>(find(parameter), value != FALSE);
}

HRESULT Effect::SetBoolArray(D3DXHANDLE parameter, const BOOL* values, UINT count) {
    const Place* place = find(parameter);
    const CallScope call("SetBoolArray", names().Text(parameter),
                         IntRow{values, Read(place, count)}, count);
    if (!place || !place->IsNumeric() || !values)
        return D3DERR_INVALIDCALL;
    for (UINT i = 0; i < Read(place, count); ++i)
        store(*place, i, BitsOf(place->constant->type, INT(values[i] != FALSE)));
    return D3D_OK;
}

// A vector of three or four takes a whole number as a colour.
HRESULT Effect::SetInt(D3DXHANDLE parameter, INT value) {
    const CallScope call("SetInt", names().Text(parameter), value);
    const Place* place = find(parameter);
    if (!place || !IsColorVector(*place))
        return setOne(place, value);
    const auto bits = static_cast<D3DCOLOR>(value);
    constexpr UINT Shifts[] = {16, 8, 0, 24};
    for (UINT i = 0; i < place->numbers; ++i)
        store(*place, i,
              BitsOf(ValueType::Float, static_cast<float>(bits >> Shifts[i] & 0xff) / 255));
    return D3D_OK;
}

HRESULT Effect::SetIntArray(D3DXHANDLE parameter, const INT* values, UINT count) {
    const Place* place = find(parameter);
    const CallScope call("SetIntArray", names().Text(parameter), IntRow{values, Read(place, count)},
                         count);
    return setArray(place, values, count);
}

HRESULT Effect::SetFloat(D3DXHANDLE parameter, float value) {
    const CallScope call("SetFloat", names().Text(parameter), value);
    return setOne(find(parameter), value);
}

HRESULT Effect::SetFloatArray(D3DXHANDLE parameter, const float* values, UINT count) {
    const Place* place = find(parameter);
    // A host means what it says of a parameter that is not there.
    const FloatRows row = {values, 1, place ? Read(place, count) : std::min(count, 16u), false};
    const CallScope call("SetFloatArray", names().Text(parameter), row, count);
    return setArray(place, values, count);
}

HRESULT Effect::SetVector(D3DXHANDLE parameter, const D3DXVECTOR4* vector) {
    const float* from = vector ? &vector->x : nullptr;
    const CallScope call("SetVector", names().Text(parameter), FloatRows{from, 1, 4, false});
    const Place* place = find(parameter);
    if (!place || !place->IsNumeric() || place->IsMatrix() || place->elements > 0)
        return D3DERR_INVALIDCALL;
    return setArray(place, from, 4);
}

HRESULT Effect::SetVectorArray(D3DXHANDLE parameter, const D3DXVECTOR4* vectors, UINT count) {
    const Place* place = find(parameter);
    const UINT read = ReadElements(place, count);
    const CallScope call("SetVectorArray", names().Text(parameter),
                         FloatRows{vectors ? &vectors->x : nullptr, read, 4}, count);
    if (!place || place->constant->valueClass != ValueClass::Vector || !vectors)
        return D3DERR_INVALIDCALL;
    const UINT columns = place->constant->columns;
    for (UINT i = 0; i < read; ++i)
        for (UINT j = 0; j < columns; ++j)
            store(*place, i * columns + j, BitsOf(place->constant->type, (&vectors[i].x)[j]));
    return D3D_OK;
}

HRESULT Effect::SetMatrix(D3DXHANDLE parameter, const D3DXMATRIX* matrix) {
    const D3DMATRIX* from = matrix;
    const CallScope call("SetMatrix", names().Text(parameter), from);
    const Place* place = find(parameter);
    if (!place || !place->IsMatrix() || place->elements > 0 || !matrix)
        return D3DERR_INVALIDCALL;
    storeMatrix(*place, 0, &matrix->m[0][0]);
    return D3D_OK;
}

HRESULT Effect::SetMatrixArray(D3DXHANDLE parameter, const D3DXMATRIX* matrices, UINT count) {
    const Place* place = find(parameter);
    const UINT read = ReadElements(place, count);
    const CallScope call("SetMatrixArray", names().Text(parameter),
                         FloatRows{matrices ? &matrices->m[0][0] : nullptr, read, 16}, count);
    if (!place || !place->IsMatrix() || !matrices)
        return D3DERR_INVALIDCALL;
    for (UINT i = 0; i < read; ++i)
        storeMatrix(*place, i, &matrices[i].m[0][0]);
    return D3D_OK;
}

HRESULT Effect::SetMatrixTranspose(D3DXHANDLE parameter, const D3DXMATRIX* matrix) {
    const D3DMATRIX* from = matrix;
    const CallScope call("SetMatrixTranspose", names().Text(parameter), from);
    const Place* place = find(parameter);
    if (!place || !place->IsMatrix() || place->elements > 0 || !matrix)
        return D3DERR_INVALIDCALL;
    float turned[16];
    Transpose(turned, &matrix->m[0][0]);
    storeMatrix(*place, 0, turned);
    return D3D_OK;
}

Held<IDirect3DBaseTexture9>* Effect::textureOf(const Place* place) {
    if (!place || place->constant->type != ValueType::Texture || place->elements > 0)
        return nullptr;
    return &mTextures[static_cast<std::size_t>(place - &mPlaces[0])];
}

HRESULT Effect::SetTexture(D3DXHANDLE parameter, IDirect3DBaseTexture9* texture) {
    const CallScope call("SetTexture", names().Text(parameter), texture);
    Held<IDirect3DBaseTexture9>* place = textureOf(find(parameter));
    if (!place)
        return D3DERR_INVALIDCALL;
    if (place->get() != texture) {
        *place = Hold(texture);
        mTexturesChanged = true;
    }
    return D3D_OK;
}

// --- getters

template <typename Number>
HRESULT Effect::getOne(const Place* place, Number* value) const {
    if (!place || !place->IsOne() || !value)
        return D3DERR_INVALIDCALL;
    *value = NumberOf<Number>(place->constant->type, LoadBits(at(*place, 0)));
    return D3D_OK;
}

HRESULT Effect::GetValue(D3DXHANDLE parameter, void* data, UINT bytes) {
    const CallScope call("GetValue", names().Text(parameter), bytes);
    const int number = names().Find(parameter);
    if (number < 0 || !data)
        return D3DERR_INVALIDCALL;
    const Place& place = mPlaces[number];
    if (Held<IDirect3DBaseTexture9>* texture = textureOf(&place)) {
        IDirect3DBaseTexture9* value = texture->get();
        if (bytes < sizeof value)
            return D3DERR_INVALIDCALL;
        if (value)
            value->AddRef();
        std::memcpy(data, &value, sizeof value);
        return D3D_OK;
    }
    if (place.numbers == 0 || bytes / 4 < place.numbers)
        return D3DERR_INVALIDCALL;
    auto* to = static_cast<std::byte*>(data);
    mPlaces.Visit(number, [&](const Place& leaf) {
        for (UINT i = 0; i < leaf.numbers; ++i, to += 4)
            StoreBits(to, LoadBits(at(leaf, i)));
    });
    return D3D_OK;
}

HRESULT Effect::GetBool(D3DXHANDLE parameter, BOOL* value) {
    const CallScope call("GetBool", names().Text(parameter));
    const Place* place = find(parameter);
    float number = 0;
    const HRESULT result = value ? getOne(place, &number) : D3DERR_INVALIDCALL;
    if (SUCCEEDED(result))
        *value = number != 0;
    return result;
}

HRESULT Effect::GetInt(D3DXHANDLE parameter, INT* value) {
    const CallScope call("GetInt", names().Text(parameter));
    const Place* place = find(parameter);
    if (!place || !value || !IsColorVector(*place))
        return getOne(place, value);
    const auto channel = [&](UINT i) {
        const float number = std::bit_cast<float>(LoadBits(at(*place, i)));
        return static_cast<DWORD>(std::lround(number > 0 ? std::min(number, 1.0f) * 255 : 0.0f));
    };
    const D3DCOLOR color =
        D3DCOLOR_ARGB(place->numbers > 3 ? channel(3) : 0, channel(0), channel(1), channel(2));
    *value = static_cast<INT>(color);
    return D3D_OK;
}

HRESULT Effect::GetFloat(D3DXHANDLE parameter, float* value) {
    const CallScope call("GetFloat", names().Text(parameter));
    return getOne(find(parameter), value);
}

HRESULT Effect::GetVector(D3DXHANDLE parameter, D3DXVECTOR4* vector) {
    const CallScope call("GetVector", names().Text(parameter));
    const Place* place = find(parameter);
    if (!place || !vector || !place->IsNumeric() || place->IsMatrix() || place->elements > 0)
        return D3DERR_INVALIDCALL;
    *vector = D3DXVECTOR4(0, 0, 0, 0);
    for (UINT i = 0; i < place->numbers; ++i)
        (&vector->x)[i] = NumberOf<float>(place->constant->type, LoadBits(at(*place, i)));
    return D3D_OK;
}

HRESULT Effect::GetMatrix(D3DXHANDLE parameter, D3DXMATRIX* matrix) {
    const CallScope call("GetMatrix", names().Text(parameter));
    const Place* place = find(parameter);
    if (!place || !matrix || !place->IsMatrix() || place->elements > 0)
        return D3DERR_INVALIDCALL;
    *matrix = D3DXMATRIX();
    const UINT columns = place->constant->columns;
    for (UINT i = 0; i < place->numbers; ++i)
        matrix->m[i / columns][i % columns] =
            NumberOf<float>(place->constant->type, LoadBits(at(*place, i)));
    return D3D_OK;
}

HRESULT Effect::GetString(D3DXHANDLE parameter, LPCSTR* text) {
    const CallScope call("GetString", names().Text(parameter));
    const Place* place = find(parameter);
    if (!place || place->constant->type != ValueType::String || !text)
        return D3DERR_INVALIDCALL;
    *text = place->constant->text.c_str();
    return D3D_OK;
}

HRESULT Effect::GetTexture(D3DXHANDLE parameter, IDirect3DBaseTexture9** texture) {
    const CallScope call("GetTexture", names().Text(parameter));
    Held<IDirect3DBaseTexture9>* place = textureOf(find(parameter));
    if (!place || !texture)
        return D3DERR_INVALIDCALL;
    *texture = place->get();
    if (*texture)
        (*texture)->AddRef();
    return D3D_OK;
}

} // namespace VornPlatform
