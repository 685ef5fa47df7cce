// SPDX-License-Identifier: MIT
//
// Everything about parameters that has a name: themselves, their members, their elements, and their
// annotations, "name@annotation", whose values lie behind the block.
//
//   Places places(code.parameters, blockSize);
//   int found = places.Names().Find("lights[1].pos");
//   places[found].offset;                             // of its bytes in the block
//
// Parameters come first, in the order of the file.
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"
#include "platform/d3dx9/effect/name_table.hpp"

#include <cstddef>
#include <memory>

namespace VornPlatform {

struct Place {
    const ShaderConstant* constant = nullptr; // its type; what it says of elements is `elements`
    UINT elements = 0;                        // 0 for what is no array, or an element of one
    UINT offset = 0;                          // in the block (unit: bytes)
    UINT firstRegister = 0, endRegister = 0;  // of a shader by itself
    UINT numbers = 0;                         // in all, those of members and elements; objects: 0
    int firstElement = -1, firstMember = -1;

    bool IsNumeric() const { return constant->valueClass < ValueClass::Struct; }
    bool IsMatrix() const { return constant->valueClass == ValueClass::Matrix; }
    /// One number by itself.
    bool IsOne() const { return IsNumeric() && numbers == 1 && elements == 0; }
    UINT ElementNumbers() const { return constant->rows * constant->columns; }
    /// Of a numeric place: where its n-th number lies in the block, elements one behind the other,
    /// matrices row by row.
    UINT NumberOffset(UINT n) const {
        const ShaderConstant& c = *constant;
        const UINT element = n / ElementNumbers(), rest = n % ElementNumbers();
        UINT at = offset + element * c.elementStride;
        if (!IsMatrix())
            return at + rest * 4;
        const UINT row = rest / c.columns, column = rest % c.columns;
        return at +
               (c.rowMajor ? row * c.vectorStride + column * 4 : column * c.vectorStride + row * 4);
    }
};

/// Registers that one element of it takes.
UINT ElementRegisters(const ShaderConstant& constant);

class Places {
public:
    /// They stay where they are for as long as this lives.
    explicit Places(const std::vector<ShaderConstant>& parameters, std::size_t blockSize = 0);

    /// The values of annotations that are numbers, to stand behind the block.
    const std::vector<std::byte>& AnnotationValues() const { return mAnnotationValues; }

    const NameTable& Names() const { return *mNames; }
    std::size_t Size() const { return mPlaces.size(); }
    const Place& operator[](int number) const { return mPlaces[static_cast<std::size_t>(number)]; }

    /// Of the `parent` by name or handle, with null of all. -1 if there is none.
    int FindIn(D3DXHANDLE parent, const char* name) const;
    int MemberOf(D3DXHANDLE parent, UINT index) const;
    /// Blind to case.
    int FindSemantic(D3DXHANDLE parent, const char* semantic) const;

    /// Calls with each numeric place in the order in which a program has their values, arrays of
    /// numbers as one.
    template <typename Function>
    void Visit(int number, const Function& function) const {
        const Place& place = (*this)[number];
        if (place.IsNumeric()) {
            function(place);
        } else if (place.elements > 0 && place.firstElement >= 0) {
            for (UINT i = 0; i < place.elements; ++i)
                Visit(place.firstElement + static_cast<int>(i), function);
        } else if (place.firstMember >= 0) {
            for (std::size_t i = 0; i < place.constant->members.size(); ++i)
                Visit(place.firstMember + static_cast<int>(i), function);
        }
    }

private:
    void expand(int number, std::vector<std::string>& names);
    void addAnnotations(const ShaderConstant& parameter, std::size_t blockSize,
                        std::vector<std::string>& names);

    std::size_t mParameters;
    std::vector<Place> mPlaces;
    std::vector<std::byte> mAnnotationValues;
    std::unique_ptr<NameTable> mNames;
};

} // namespace VornPlatform
