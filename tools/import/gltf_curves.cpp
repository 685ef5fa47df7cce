// SPDX-License-Identifier: MIT
#include "tools/import/gltf_curves.hpp"

#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace Import {
namespace {

std::uint32_t word(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    if (at + sizeof value <= bytes.size())
        std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

std::string fromBase64(std::string_view text) {
    static constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::size_t digit = digits.find(c);
        if (digit == std::string_view::npos)
            break;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return bytes;
}

/// The element of an array by its number, or null.
const Json::Value& element(const Json::Value& root, const char* list, const Json::Value& index) {
    static const Json::Value none;
    const Json::Value& array = Vorn::JsonMember(root, list);
    if (!array.isArray() || !index.isUInt() || index.asUInt() >= array.size())
        return none;
    const Json::Value& found = array[index.asUInt()];
    return found.isObject() ? found : none;
}

std::size_t number(const Json::Value& object, const char* key) {
    const Json::Value& value = Vorn::JsonMember(object, key);
    return value.isUInt() ? value.asUInt() : 0;
}

class Curves {
public:
    Curves(const std::string& path, SourceScene& scene) : mPath(path), mScene(scene) {
        mFile = Vorn::TextFromFile(path);
        std::string_view text = mFile;
        // The binary form: a header of three words, then chunks of a length, a type and bytes.
        if (text.starts_with("glTF")) {
            const std::size_t length = word(mFile, 12);
            mOwnBuffer = 20 + (length + 3) / 4 * 4 + 8;
            text = text.substr(std::min<std::size_t>(20, text.size()), length);
        }
        mRoot = Vorn::ParseJson(text);
    }

    void Read() {
        const Json::Value& animations = Vorn::JsonMember(mRoot, "animations");
        if (!animations.isArray() || animations.size() != mScene.animations.size())
            return;
        for (Json::ArrayIndex a = 0; a < animations.size(); ++a) {
            const Json::Value& from = animations[a];
            if (!from.isObject())
                continue;
            const Json::Value& channels = Vorn::JsonMember(from, "channels");
            for (Json::ArrayIndex c = 0; channels.isArray() && c < channels.size(); ++c)
                channel(from, channels[c], mScene.animations[a]);
        }
    }

private:
    void channel(const Json::Value& animation, const Json::Value& from, SourceAnimation& to) {
        if (!from.isObject())
            return;
        const Json::Value& sampler =
            element(animation, "samplers", Vorn::JsonMember(from, "sampler"));
        const std::string curve = Vorn::JsonString(sampler, "interpolation", "LINEAR");
        if (curve != "STEP" && curve != "CUBICSPLINE")
            return;
        const Json::Value& target = Vorn::JsonObject(from, "target");
        const std::string path = Vorn::JsonString(target, "path", "");
        const std::string name = nameOf(Vorn::JsonMember(target, "node"));
        const auto found =
            std::find_if(to.channels.begin(), to.channels.end(), [&](const SourceChannel& c) {
                return !name.empty() && mScene.nodes[c.node].name == name;
            });
        bool done = found != to.channels.end();
        if (done && path == "translation")
            done = track(found->positions, sampler, curve == "STEP");
        else if (done && path == "rotation")
            done = track(found->rotations, sampler, curve == "STEP");
        else if (done && path == "scale")
            done = track(found->scales, sampler, curve == "STEP");
        if (!done && path != "weights")
            mScene.readerNotes.push_back(fmt::format(
                "animation \"{}\": the {} of node \"{}\" cannot be read as {}: straight "
                "ways between its keys",
                to.name, path, name, curve == "STEP" ? "steps" : "a cubic curve"));
    }

    /// Empty where it is not the name of one node alone.
    std::string nameOf(const Json::Value& node) const {
        const std::string name = Vorn::JsonString(element(mRoot, "nodes", node), "name", "");
        const auto same = std::count_if(mScene.nodes.begin(), mScene.nodes.end(),
                                        [&](const SourceNode& n) { return n.name == name; });
        return same == 1 ? name : std::string();
    }

    static Vec3 value(const float* f, const Vec3&) {
        return {static_cast<double>(f[0]), static_cast<double>(f[1]), static_cast<double>(f[2])};
    }
    static Quat value(const float* f, const Quat&) {
        return {static_cast<double>(f[0]), static_cast<double>(f[1]), static_cast<double>(f[2]),
                static_cast<double>(f[3])};
    }

    template <class T>
    bool track(SourceTrack<T>& to, const Json::Value& sampler, bool step) {
        if (step) {
            to.curve = Curve::Step;
            return true;
        }
        constexpr std::size_t width = sizeof(T) / sizeof(double);
        const std::vector<float> times = floats(Vorn::JsonMember(sampler, "input"), 1);
        const std::vector<float> values = floats(Vorn::JsonMember(sampler, "output"), width);
        if (times.empty() || values.size() != times.size() * width * 3)
            return false;
        std::vector<SourceKey<T>> keys;
        for (std::size_t i = 0; i < times.size(); ++i) {
            const float* key = values.data() + i * width * 3;
            if (i > 0 && !(times[i] > times[i - 1]))
                return false;
            keys.push_back({static_cast<double>(times[i]), value(key + width, T{}), value(key, T{}),
                            value(key + 2 * width, T{})});
        }
        to = {std::move(keys), Curve::Cubic};
        return true;
    }

    /// The numbers of an accessor; none where they are no plain finite floats.
    std::vector<float> floats(const Json::Value& index, std::size_t width) {
        constexpr std::size_t floatType = 5126;
        const Json::Value& accessor = element(mRoot, "accessors", index);
        if (number(accessor, "componentType") != floatType || accessor.isMember("sparse"))
            return {};
        const Json::Value& view =
            element(mRoot, "bufferViews", Vorn::JsonMember(accessor, "bufferView"));
        if (!view.isObject())
            return {};
        const std::string& bytes = buffer(Vorn::JsonMember(view, "buffer"));
        const std::size_t start = number(view, "byteOffset") + number(accessor, "byteOffset");
        const std::size_t count = number(accessor, "count");
        std::size_t stride = number(view, "byteStride");
        if (stride == 0)
            stride = width * sizeof(float);
        constexpr std::size_t longest = 1 << 16;
        if (count == 0 || stride > longest ||
            start + (count - 1) * stride + width * sizeof(float) > bytes.size())
            return {};
        std::vector<float> result(count * width);
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(&result[i * width], bytes.data() + start + i * stride,
                        width * sizeof(float));
        if (!std::all_of(result.begin(), result.end(), [](float f) { return std::isfinite(f); }))
            return {};
        return result;
    }

    const std::string& buffer(const Json::Value& index) {
        const Json::Value& from = element(mRoot, "buffers", index);
        const unsigned int key = index.isUInt() ? index.asUInt() : 0;
        const auto known = mBuffers.find(key);
        if (known != mBuffers.end())
            return known->second;
        std::string bytes;
        const std::string uri = Vorn::JsonString(from, "uri", "");
        if (uri.empty() && mOwnBuffer > 0 && mOwnBuffer < mFile.size())
            bytes = mFile.substr(mOwnBuffer);
        else if (const std::size_t comma = uri.find(";base64,"); comma != std::string::npos)
            bytes = fromBase64(std::string_view(uri).substr(comma + 8));
        else if (!uri.empty())
            bytes = Vorn::TextFromFile((std::filesystem::path(mPath).parent_path() / uri).string());
        return mBuffers.emplace(key, std::move(bytes)).first->second;
    }

    std::string mPath;
    SourceScene& mScene;
    std::string mFile;
    std::size_t mOwnBuffer = 0;
    Json::Value mRoot;
    std::map<unsigned int, std::string> mBuffers;
};

} // namespace

void ReadGltfCurves(const std::string& path, SourceScene& scene) {
    try {
        Curves(path, scene).Read();
    } catch (const std::runtime_error& error) {
        scene.readerNotes.push_back(
            fmt::format("the curves of its animations cannot be read ({}): straight ways between "
                        "keys",
                        error.what()));
    }
}

} // namespace Import
