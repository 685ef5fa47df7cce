// SPDX-License-Identifier: MIT
#include "dev/json_file.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"

#include <json/reader.h>

#include <memory>

namespace Vorn::Dev {

Json::Value ReadWhole(const std::string& path) {
    const std::string text = TextFromFile(path);
    bool whole = false;
    Json::Value root = ParseJson(text, whole);
    if (whole && root.isObject())
        return root;
    // Once more, for the place.
    Json::Value ignored;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (reader->parse(text.data(), text.data() + text.size(), &ignored, &errors) || errors.empty())
        errors = "* it holds no JSON object";
    throw DataError(errors.substr(2)); // without the mark of a list
}

} // namespace Vorn::Dev
