// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/json.hpp"

#include <json/value.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace Tests {

inline std::string Base64(const std::string& bytes) {
    static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (i + k < bytes.size() ? static_cast<std::uint8_t>(bytes[i + k]) : 0);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : digits[bits >> (18 - 6 * k) & 63];
    }
    return text;
}

inline Json::Value Array(const std::vector<double>& numbers) {
    Json::Value array(Json::arrayValue);
    for (const double number : numbers)
        array.append(number);
    return array;
}

/// A glTF scene with its numbers embedded. `root` is free to write to.
class GltfMaker {
public:
    Json::Value root;

    GltfMaker() {
        root["asset"]["version"] = "2.0";
        root["scene"] = 0;
    }

    /// The number of a new accessor.
    int Floats(const std::vector<float>& numbers, const std::string& type) {
        const std::size_t width = type == "SCALAR" ? 1
                                  : type == "VEC2" ? 2
                                  : type == "VEC3" ? 3
                                  : type == "VEC4" ? 4
                                                   : 16;
        const int index =
            add(numbers.data(), numbers.size() * sizeof(float), 5126, numbers.size() / width, type);
        Json::Value& accessor = root["accessors"][index];
        for (std::size_t c = 0; c < width; ++c) {
            float low = numbers[c], high = numbers[c];
            for (std::size_t i = c; i < numbers.size(); i += width) {
                low = std::min(low, numbers[i]);
                high = std::max(high, numbers[i]);
            }
            accessor["min"].append(static_cast<double>(low));
            accessor["max"].append(static_cast<double>(high));
        }
        return index;
    }
    int Shorts(const std::vector<std::uint16_t>& numbers, const std::string& type) {
        return add(numbers.data(), numbers.size() * 2, 5123,
                   numbers.size() / (type == "SCALAR" ? 1 : 4), type);
    }

    /// A track of an animation, which comes into being with its first.
    void Track(int animation, int node, const char* path, int times, int values,
               const char* interpolation = "LINEAR") {
        Json::Value& a = root["animations"][animation];
        Json::Value sampler;
        sampler["input"] = times;
        sampler["output"] = values;
        sampler["interpolation"] = interpolation;
        Json::Value channel;
        channel["sampler"] = static_cast<int>(a["samplers"].size());
        channel["target"]["node"] = node;
        channel["target"]["path"] = path;
        a["samplers"].append(sampler);
        a["channels"].append(channel);
    }

    std::string Text() {
        root["buffers"][0]["byteLength"] = static_cast<int>(mBytes.size());
        root["buffers"][0]["uri"] = "data:application/octet-stream;base64," + Base64(mBytes);
        return Vorn::WriteJson(root);
    }

private:
    int add(const void* data, std::size_t size, int componentType, std::size_t count,
            const std::string& type) {
        mBytes.resize((mBytes.size() + 3) / 4 * 4);
        Json::Value view;
        view["buffer"] = 0;
        view["byteOffset"] = static_cast<int>(mBytes.size());
        view["byteLength"] = static_cast<int>(size);
        mBytes.append(static_cast<const char*>(data), size);
        const int index = static_cast<int>(root["accessors"].size());
        Json::Value accessor;
        accessor["bufferView"] = index;
        accessor["componentType"] = componentType;
        accessor["count"] = static_cast<int>(count);
        accessor["type"] = type;
        root["bufferViews"].append(view);
        root["accessors"].append(accessor);
        return index;
    }

    std::string mBytes;
};

} // namespace Tests
