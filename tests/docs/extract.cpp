// SPDX-License-Identifier: MIT
//
// Takes the examples out of the documents; runs in the root of the repository.
//
//   docs_extract sources FOLDER     the C++ of all pages: FOLDER/programs.cpp and fragments.cpp
//   docs_extract files FOLDER PAGE  the blocks of a page that are files, below FOLDER
#include "tests/docs/blocks.hpp"

#include <cstdio>
#include <exception>
#include <set>

namespace {

using Docs::Block;

/// From here on the compiler names the document's own lines.
std::string Lines(const Block& block, const std::string& text) {
    return "#line " + std::to_string(block.line) + " \"" + block.page + "\"\n" + text;
}

struct Split {
    std::set<std::string> includes;
    /// With an empty line in place of each include.
    std::string rest;
};
Split SplitIncludes(const std::string& text) {
    Split split;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const bool include = line.rfind("#include", 0) == 0;
        if (include)
            split.includes.insert(line);
        split.rest += (include ? "" : line) + "\n";
    }
    return split;
}

/// One source for all programs, each in a namespace of its own, whose main is a plain function.
std::string Programs(const std::vector<Block>& blocks) {
    std::set<std::string> includes;
    std::string code, table;
    for (const Block& block : blocks) {
        if (!block.IsProgram())
            continue;
        Split split = SplitIncludes(block.text);
        includes.merge(split.includes);
        std::string& text = split.rest;
        text.replace(text.find("\nint main("), 10, "\nint Main(");
        text.insert(text.rfind('}'), "return 0;\n");
        code += "namespace " + block.Name() + " {\n" + Lines(block, text) + "}\n";
        table += "    {\"" + block.Name() + "\", Docs::Call<" + block.Name() + "::Main>},\n";
    }
    std::string head = "#include \"tests/docs/programs.hpp\"\n";
    for (const std::string& include : includes)
        head += include + "\n";
    return head + code + "int main(int count, char** arguments) {\n    return Docs::Run({\n" +
           table + "    }, count, arguments);\n}\n";
}

/// One source for all fragments, each the body of a test; what stands at the top of a file goes
/// before them.
std::string Fragments(const std::vector<Block>& blocks) {
    std::string head = "#include \"tests/docs/fragment.hpp\"\n", top;
    std::string code = "using Docs::Fragment;\n";
    for (const Block& block : blocks) {
        if (block.IsFragment()) {
            const Split split = SplitIncludes(block.text);
            for (const std::string& include : split.includes)
                head += include + "\n";
            code += "TEST_F(Fragment, " + block.Name() + ") {\n" + Lines(block, split.rest) + "}\n";
        } else if (block.language == "cpp" && block.tag == "top") {
            top += Lines(block, block.text);
        }
    }
    return head + top + code;
}

int Run(const std::vector<std::string>& words) {
    if (words.size() == 2 && words[0] == "sources") {
        std::filesystem::create_directories(words[1]);
        const std::vector<Block> blocks = Docs::AllBlocks();
        std::ofstream(words[1] + "/programs.cpp") << Programs(blocks);
        std::ofstream(words[1] + "/fragments.cpp") << Fragments(blocks);
        return 0;
    }
    if (words.size() == 3 && words[0] == "files") {
        for (const Block& block : Docs::BlocksOf(words[2]))
            if (block.IsFile())
                Docs::WriteFile(block, words[1]);
        return 0;
    }
    std::fputs("docs_extract sources FOLDER\ndocs_extract files FOLDER PAGE\n", stderr);
    return 2;
}

} // namespace

int main(int count, char** arguments) {
    try {
        return Run({arguments + 1, arguments + count});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "docs_extract: %s\n", error.what());
        return 1;
    }
}
