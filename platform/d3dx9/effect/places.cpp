// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/places.hpp"
#include "platform/d3dx9/effect/number_bits.hpp"

#include <algorithm>
#include <iterator>
#include <strings.h>

namespace VornPlatform {

namespace {

UINT Numbers(const ShaderConstant& constant, UINT elements) {
    UINT numbers = 0;
    if (constant.valueClass < ValueClass::Struct)
        numbers = constant.rows * constant.columns;
    for (const ShaderConstant& member : constant.members)
        numbers += Numbers(member, member.elements);
    return numbers * std::max(elements, 1u);
}

} // namespace

UINT ElementRegisters(const ShaderConstant& constant) {
    switch (constant.valueClass) {
    case ValueClass::Matrix:
        return constant.rowMajor ? constant.rows : constant.columns;
    case ValueClass::Struct: {
        UINT sum = 0;
        for (const ShaderConstant& member : constant.members)
            sum += ElementRegisters(member) * std::max(member.elements, 1u);
        return sum;
    }
    default:
        return 1;
    }
}

Places::Places(const std::vector<ShaderConstant>& parameters, std::size_t blockSize)
    : mParameters(parameters.size()) {
    std::vector<std::string> names;
    for (const ShaderConstant& parameter : parameters) {
        mPlaces.push_back({.constant = &parameter,
                           .elements = parameter.elements,
                           .offset = parameter.offset,
                           .firstRegister = parameter.registerIndex,
                           .endRegister = parameter.registerIndex + parameter.registerCount,
                           .numbers = Numbers(parameter, parameter.elements)});
        names.push_back(parameter.name);
    }
    for (std::size_t i = 0; i < parameters.size(); ++i)
        expand(static_cast<int>(i), names);
    for (const ShaderConstant& parameter : parameters)
        addAnnotations(parameter, blockSize, names);
    mNames = std::make_unique<NameTable>(std::move(names));
}

// Texts, single numbers and vectors: tools write no others.
void Places::addAnnotations(const ShaderConstant& parameter, std::size_t blockSize,
                            std::vector<std::string>& names) {
    for (const ShaderConstant& annotation : parameter.annotations) {
        const bool isText = annotation.type == ValueType::String;
        if (!isText && (annotation.valueClass > ValueClass::Vector || annotation.elements > 0))
            continue;
        Place place = {.constant = &annotation,
                       .offset = static_cast<UINT>(blockSize + mAnnotationValues.size())};
        place.numbers = isText ? 0 : annotation.rows * annotation.columns;
        for (UINT i = 0; i < place.numbers; ++i) {
            const double value = i < annotation.numbers.size() ? annotation.numbers[i] : 0;
            std::byte bytes[4];
            StoreBits(bytes, BitsOf(annotation.type, value));
            mAnnotationValues.insert(mAnnotationValues.end(), std::begin(bytes), std::end(bytes));
        }
        mPlaces.push_back(place);
        names.push_back(parameter.name + "@" + annotation.name);
    }
}

// Elements of one array, and members of one structure, are numbered one behind the other.
void Places::expand(int number, std::vector<std::string>& names) {
    Place place = (*this)[number];
    const ShaderConstant& constant = *place.constant;
    const int first = static_cast<int>(mPlaces.size());
    const std::string name = names[static_cast<std::size_t>(number)];
    if (place.elements > 0) {
        mPlaces[static_cast<std::size_t>(number)].firstElement = first;
        Place element = place;
        element.elements = 0;
        element.numbers = place.numbers / place.elements;
        for (UINT i = 0; i < place.elements; ++i) {
            mPlaces.push_back(element);
            names.push_back(name + "[" + std::to_string(i) + "]");
            element.offset += constant.elementStride;
            element.firstRegister =
                std::min(element.firstRegister + ElementRegisters(constant), place.endRegister);
        }
    } else if (!constant.members.empty()) {
        mPlaces[static_cast<std::size_t>(number)].firstMember = first;
        for (const ShaderConstant& member : constant.members) {
            const UINT registers = ElementRegisters(member) * std::max(member.elements, 1u);
            const UINT end = std::min(place.firstRegister + registers, place.endRegister);
            mPlaces.push_back({.constant = &member,
                               .elements = member.elements,
                               .offset = member.offset + (place.offset - constant.offset),
                               .firstRegister = place.firstRegister,
                               .endRegister = end,
                               .numbers = Numbers(member, member.elements)});
            names.push_back(name + "." + member.name);
            place.firstRegister = end;
        }
    }
    const int end = static_cast<int>(mPlaces.size());
    for (int i = first; i < end; ++i)
        expand(i, names);
}

int Places::FindIn(D3DXHANDLE parent, const char* name) const {
    if (!name || !parent)
        return mNames->Find(name);
    const int number = mNames->Find(parent);
    if (number < 0)
        return -1;
    const std::string whole = mNames->Name(number) + (*name == '[' ? "" : ".") + name;
    return mNames->Find(whole.c_str());
}

int Places::MemberOf(D3DXHANDLE parent, UINT index) const {
    if (!parent)
        return index < mParameters ? static_cast<int>(index) : -1;
    const int number = mNames->Find(parent);
    if (number < 0)
        return -1;
    const Place& place = (*this)[number];
    return place.firstMember >= 0 && index < place.constant->members.size()
               ? place.firstMember + static_cast<int>(index)
               : -1;
}

int Places::FindSemantic(D3DXHANDLE parent, const char* semantic) const {
    if (!semantic)
        return -1;
    for (UINT i = 0;; ++i) {
        const int number = MemberOf(parent, i);
        if (number < 0 || strcasecmp((*this)[number].constant->semantic.c_str(), semantic) == 0)
            return number;
    }
}

} // namespace VornPlatform
