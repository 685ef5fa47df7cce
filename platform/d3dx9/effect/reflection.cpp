// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/reflection.hpp"

#include "platform/d3dx9/effect/lexer.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace VornPlatform {

namespace {

constexpr UINT VectorSize = 16; // (unit: bytes)
constexpr UINT LargestBlock = 65536;

UINT AlignedTo(UINT offset, UINT alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

// How one element of a constant lies.
struct Shape {
    UINT size = 0, alignment = 4;
};

class Layout {
public:
    Layout(const HlslTypes& types, bool keepRowMajor)
        : types_(types), keepRowMajor_(keepRowMajor) {}

    ShaderConstant place(const SourceParameter& parameter, const HlslType& type, UINT& offset) {
        ShaderConstant constant;
        constant.name = parameter.name;
        constant.semantic = parameter.semantic;
        constant.valueClass = type.valueClass;
        constant.type = type.type;
        constant.rows = type.rows;
        constant.columns = type.columns;
        constant.rowMajor =
            keepRowMajor_ && parameter.isRowMajor && type.valueClass == ValueClass::Matrix;
        std::vector<UINT> dimensions = parameter.dimensions;
        dimensions.insert(dimensions.end(), type.dimensions.begin(), type.dimensions.end());
        constant.elements = ElementCount(dimensions);
        if (constant.elements > MaxShaderNumbers)
            throw EffectError(parameter.place, "'" + parameter.name + "' has too many elements");

        Shape shape = shapeOf(constant, type);
        const bool isArray = constant.elements != 0;
        if (isArray)
            shape.alignment = AlignedTo(shape.alignment, VectorSize);
        constant.offset = AlignedTo(offset, shape.alignment);
        if (type.structure)
            shape.size = placeMembers(constant, *type.structure, parameter);
        if (isArray || type.structure)
            shape.size = AlignedTo(shape.size, VectorSize);
        constant.elementStride = isArray ? shape.size : 0;
        const std::uint64_t end =
            constant.offset + std::uint64_t(shape.size) * std::max(1u, constant.elements);
        if (end > LargestBlock)
            throw EffectError(parameter.place, "the parameters up to '" + parameter.name +
                                                   "' take more than " +
                                                   std::to_string(LargestBlock) + " bytes");
        offset = static_cast<UINT>(end);
        return constant;
    }

private:
    Shape shapeOf(ShaderConstant& constant, const HlslType& type) const {
        if (type.structure)
            return {0, VectorSize};
        if (type.valueClass == ValueClass::Matrix) {
            constant.vectorStride = VectorSize;
            return {VectorSize * (constant.rowMajor ? type.rows : type.columns), VectorSize};
        }
        return {type.columns * 4, type.columns == 1 ? 4u : type.columns == 2 ? 8u : VectorSize};
    }

    UINT placeMembers(ShaderConstant& constant, const SourceStruct& structure,
                      const SourceParameter& parameter) {
        UINT offset = constant.offset;
        for (const SourceParameter& member : structure.members) {
            const std::optional<HlslType> type = types_.find(member.type);
            if (!type || !type->isNumeric() || types_.componentsOf(*type) == 0)
                throw EffectError(parameter.place, "'" + member.type + "' of '" + parameter.name +
                                                       "." + member.name +
                                                       "' is no type of numbers");
            SourceParameter placed = member;
            placed.place = parameter.place;
            placed.isRowMajor = member.isRowMajor || parameter.isRowMajor;
            constant.members.push_back(place(placed, *type, offset));
        }
        return offset - constant.offset;
    }

    const HlslTypes& types_;
    const bool keepRowMajor_;
};

// Writes start values, which stand in the order of the text.
class StartWriter {
public:
    StartWriter(std::vector<std::byte>& block, const Initial& initial)
        : block_(block), initial_(initial) {}

    void write(const ShaderConstant& constant, UINT shift = 0) {
        for (UINT element = 0; element < std::max(1u, constant.elements); ++element) {
            const UINT base = shift + element * constant.elementStride;
            for (const ShaderConstant& member : constant.members)
                write(member, base);
            if (!constant.members.empty())
                continue;
            for (UINT row = 0; row < constant.rows; ++row)
                for (UINT column = 0; column < constant.columns; ++column) {
                    const UINT vector = constant.rowMajor ? row : column;
                    const UINT component = constant.rowMajor ? column : row;
                    const UINT within = constant.vectorStride
                                            ? vector * constant.vectorStride + component * 4
                                            : column * 4;
                    put(base + constant.offset + within, constant.type);
                }
        }
    }

private:
    void put(UINT offset, ValueType type) {
        if (initial_.fills ? initial_.numbers.empty() : next_ >= initial_.numbers.size())
            return;
        const double number = initial_.numbers[initial_.fills ? 0 : next_++];
        std::int32_t whole = 0;
        float real = static_cast<float>(number);
        if (type == ValueType::Float)
            std::memcpy(&whole, &real, sizeof whole);
        else if (type == ValueType::Bool)
            whole = number != 0;
        else if (std::isfinite(number))
            // Hexadecimal colours go beyond what an int holds, and wrap.
            whole = static_cast<std::int32_t>(static_cast<std::uint32_t>(
                static_cast<std::int64_t>(std::clamp(number, -9e18, 9e18))));
        if (offset + 4 <= block_.size())
            std::memcpy(&block_[offset], &whole, sizeof whole);
    }

    std::vector<std::byte>& block_;
    const Initial& initial_;
    std::size_t next_ = 0;
};

ValueType ObjectType(const std::string& name) {
    const std::string word = LowerCase(name);
    if (word.starts_with("texture"))
        return ValueType::Texture;
    if (word.starts_with("sampler"))
        return ValueType::Sampler;
    if (word == "string")
        return ValueType::String;
    if (word == "vertexshader")
        return ValueType::VertexShader;
    return word == "pixelshader" ? ValueType::PixelShader : ValueType::None;
}

ShaderConstant ReflectObject(const SourceParameter& parameter) {
    ShaderConstant constant;
    constant.name = parameter.name;
    constant.semantic = parameter.semantic;
    constant.valueClass = ValueClass::Object;
    constant.type = ObjectType(parameter.type);
    constant.elements = ElementCount(parameter.dimensions);
    if (parameter.initial)
        constant.text = parameter.initial->text;
    return constant;
}

} // namespace

ShaderConstant ReflectAnnotation(const SourceParameter& annotation) {
    ShaderConstant constant = ReflectObject(annotation);
    if (const auto type = BuiltInType(annotation.type); type && type->isNumeric()) {
        constant.valueClass = type->valueClass;
        constant.type = type->type;
        constant.rows = type->rows;
        constant.columns = type->columns;
        if (annotation.initial)
            constant.numbers = annotation.initial->numbers;
        if (annotation.initial && annotation.initial->fills && !constant.numbers.empty())
            constant.numbers.resize(type->components(), constant.numbers[0]);
    }
    return constant;
}

Reflection Reflect(const EffectSource& source, const HlslTypes& types, bool keepRowMajor) {
    Reflection reflection;
    Layout layout(types, keepRowMajor);
    UINT offset = 0;
    for (const SourceParameter& parameter : source.parameters) {
        if (parameter.isStatic)
            continue;
        const std::optional<HlslType> type = types.find(parameter.type);
        if (type && type->isNumeric() && types.componentsOf(*type) != 0) {
            reflection.blockMembers.push_back(static_cast<UINT>(reflection.parameters.size()));
            reflection.parameters.push_back(layout.place(parameter, *type, offset));
        } else if (ObjectType(parameter.type) != ValueType::None)
            reflection.parameters.push_back(ReflectObject(parameter));
        else
            throw EffectError(parameter.place,
                              "'" + parameter.type + "' of '" + parameter.name + "' is no type");
        for (const SourceParameter& annotation : parameter.annotations)
            reflection.parameters.back().annotations.push_back(ReflectAnnotation(annotation));
    }
    reflection.start.resize(AlignedTo(offset, VectorSize));
    std::size_t at = 0;
    for (const SourceParameter& parameter : source.parameters) {
        if (parameter.isStatic)
            continue;
        const ShaderConstant& constant = reflection.parameters[at++];
        if (parameter.initial && constant.valueClass != ValueClass::Object)
            StartWriter(reflection.start, *parameter.initial).write(constant);
    }
    return reflection;
}

UINT RegisterCount(const ShaderConstant& constant) {
    UINT one = 0;
    if (constant.valueClass == ValueClass::Struct)
        for (const ShaderConstant& member : constant.members)
            one += RegisterCount(member);
    else if (constant.valueClass == ValueClass::Matrix)
        one = constant.rowMajor ? constant.rows : constant.columns;
    else
        one = 1;
    return one * std::max(1u, constant.elements);
}

namespace {

void Append(const ShaderConstant& constant, UINT shift, UINT& next,
            std::vector<RegisterCopy>& copies) {
    const RegisterCopy::Type type = constant.type == ValueType::Int    ? RegisterCopy::Int
                                    : constant.type == ValueType::Bool ? RegisterCopy::Bool
                                                                       : RegisterCopy::Float;
    for (UINT element = 0; element < std::max(1u, constant.elements); ++element) {
        const UINT base = shift + element * constant.elementStride;
        for (const ShaderConstant& member : constant.members)
            Append(member, base, next, copies);
        if (!constant.members.empty())
            continue;
        const bool isMatrix = constant.valueClass == ValueClass::Matrix;
        const UINT vectors = !isMatrix ? 1 : constant.rowMajor ? constant.rows : constant.columns;
        const UINT count = isMatrix && !constant.rowMajor ? constant.rows : constant.columns;
        for (UINT vector = 0; vector < vectors; ++vector)
            copies.push_back({next++, base + constant.offset + vector * constant.vectorStride,
                              static_cast<std::uint8_t>(count), type});
    }
}

} // namespace

void AppendRegisters(const ShaderConstant& constant, UINT first,
                     std::vector<RegisterCopy>& copies) {
    Append(constant, 0, first, copies);
}

} // namespace VornPlatform
