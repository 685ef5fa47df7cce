// SPDX-License-Identifier: MIT
//
// What has been compiled in this process, by all bytes that it was made of.
#include "platform/d3dx9/effect/compile_effect.hpp"

#include <fstream>
#include <iterator>
#include <list>
#include <mutex>
#include <system_error>

namespace VornPlatform {

namespace {

constexpr std::size_t MostKept = 64;

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), {});
    // A directory opens and cannot be read.
    if (!file.is_open() || file.bad())
        throw std::system_error(ENOENT, std::generic_category(), path);
    return text;
}

// The oldest goes when it is full.
template <typename Made>
class Kept {
public:
    struct Key {
        std::string path, entry, profile;
        Macros macros;
        std::vector<std::pair<std::string, std::string>> files;

        bool operator==(const Key&) const = default;
    };

    template <typename Make>
    std::shared_ptr<const Made> get(Key key, Make make) {
        {
            const std::scoped_lock lock(mutex_);
            for (const auto& [known, made] : kept_)
                if (known == key)
                    return made;
        }
        auto made = std::make_shared<const Made>(make());
        const std::scoped_lock lock(mutex_);
        kept_.emplace_back(std::move(key), made);
        if (kept_.size() > MostKept)
            kept_.pop_front();
        return made;
    }

private:
    std::mutex mutex_;
    std::list<std::pair<Key, std::shared_ptr<const Made>>> kept_;
};

} // namespace

std::shared_ptr<const EffectCode> CompileEffect(const std::string& path, const Macros& macros,
                                                const IncludeReader& include) {
    static Kept<EffectCode> kept;
    const EffectSource source = ReadEffectSource(path, ReadText(path), macros, include);
    return kept.get({path, "", "", macros, source.files},
                    [&] { return CompileEffectSource(source); });
}

std::shared_ptr<const CompiledShader> CompileShader(const std::string& path, const Macros& macros,
                                                    const IncludeReader& include,
                                                    const std::string& entry,
                                                    const std::string& profile) {
    static Kept<CompiledShader> kept;
    const EffectSource source = ReadEffectSource(path, ReadText(path), macros, include);
    return kept.get({path, entry, profile, macros, source.files},
                    [&] { return CompileShaderSource(source, entry, profile); });
}

} // namespace VornPlatform
