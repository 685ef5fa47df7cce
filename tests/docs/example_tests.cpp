// SPDX-License-Identifier: MIT
//
// Every example in the documents is run: a test for each fenced block, and one for the command
// lines of each page. HACKING.md tells which blocks there are.
#include "tests/docs/page_folder.hpp"

#include "vorn/core/json.hpp"

#include <d3dx9.h>

#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <sys/wait.h>

namespace {

using Docs::Block;
namespace fs = std::filesystem;

std::string Name(const testing::TestParamInfo<Block>& info) {
    return info.param.Name();
}
bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// A pool for each type that an example names. The factory keeps them, so they never die.
Vorn::EntityPoolBase& PoolOf(const std::string& type) {
    static auto& pools = *new std::map<std::string, Vorn::EntityPool<Vorn::Entity>>;
    const bool known = pools.count(type) != 0;
    Vorn::EntityPoolBase& pool = pools[type];
    if (!known) {
        Vorn::EntityFactory::Instance()->Register(type, &pool);
        pool.LoadMaster(R"({"Type": ")" + type + "\"}", 0);
    }
    return pool;
}

// The readers. Each loads a file as a game does and raises where the engine does.

void LoadEntity(const std::string& path) {
    PoolOf(Vorn::JsonString(Vorn::ParseJson(Vorn::TextFromFile(path)), "Type", ""));
    auto* factory = Vorn::EntityFactory::Instance();
    EndsWith(path, ".var") ? factory->LoadVariant(path.c_str()) : factory->LoadEntity(path.c_str());
}
void LoadScene(const std::string& path) {
    const Json::Value root = Vorn::ParseJson(Vorn::TextFromFile(path));
    for (const Json::Value& element : root["Entities"]) {
        const std::string type = Vorn::JsonString(element, "Type", "");
        const std::string variant = Vorn::JsonString(element, "Variant", "");
        Vorn::EntityPoolBase& pool = PoolOf(type);
        if (!variant.empty())
            pool.LoadVariant(R"({"Type": ")" + type + R"(", "Variant": ")" + variant + "\"}");
    }
    Vorn::Scene scene;
    scene.DeserializePath(path);
    scene.Load();
    const std::unique_ptr<Vorn::Scene, void (*)(Vorn::Scene*)> leave(
        &scene, [](Vorn::Scene* left) { left->Deinit(); });
    scene.Init();
    EXPECT_EQ(root["Entities"].size(), scene.EntityList().size());
}
void LoadPack(const std::string& path) {
    auto* packs = Vorn::RscPackManager::Instance();
    packs->Free();
    Vorn::RscPack* pack = packs->LoadRscPack(path);
    pack->InitLoad();
    for (float done = 0.0f; !pack->Load(&done);)
        ;
}
void LoadMaterial(const std::string& path) {
    const Json::Value root = Vorn::ParseJson(Vorn::TextFromFile(path));
    if (root["Texture"].isString())
        Vorn::TextureManager::Instance()->Load(root["Texture"].asString());
    Vorn::Material().Load(fs::path(path).filename());
}
void LoadTrigger(const std::string& path) {
    using Vorn::Trigger::Trigger;
    const std::unique_ptr<Trigger> trigger(Trigger::LoadScript(fs::path(path).filename()));
    EXPECT_NE(trigger->mEvent.mData, nullptr) << "no event of this name";
    EXPECT_FALSE(trigger->mAction.mCommands.empty());
    const std::regex command(R"(WAIT [\d.]+|CREATE_ENTITY \S+ \S+ POSITION( -?[\d.]+){3})");
    for (const std::string& line : trigger->mAction.mCommands)
        EXPECT_TRUE(std::regex_match(line, command)) << line;
}
void LoadPhysics(const std::string& path) {
    Vorn::PhysicsSystem::Instance()->LoadPhysicsInfo(path);
}
void LoadFont(const std::string& path) {
    Vorn::bmFont font;
    EXPECT_TRUE(font.loadCharData(path));
    const std::string text = Vorn::TextFromFile(path);
    const std::regex glyph(R"(char id=(\d+) .*xadvance=(\d+))");
    for (std::sregex_iterator match(text.begin(), text.end(), glyph), end; match != end; ++match) {
        const std::string letter(1, static_cast<char>(std::stoi((*match)[1])));
        EXPECT_EQ(font.TextSize(letter.c_str()).x, std::stof((*match)[2])) << letter;
    }
}
void LoadRecording(const std::string& path) {
    VornPlatform::PlayInput(path);
    int frames = 0;
    for (; VornPlatform::IsPlayingInput() && frames < 1'000; ++frames)
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageA(&message);
    VornPlatform::StopInput();
    EXPECT_LT(frames, 1'000);
}
void LoadDeclarations(const std::string& path) {
    fs::create_directories("declared/data"); // a game without anything else
    fs::copy_file(path, "declared/" + path, fs::copy_options::overwrite_existing);
    if (std::system("'" VORN_PROGRAM "' check declared >declared.txt 2>&1") != 0)
        throw std::runtime_error(path + ": " + Vorn::TextFromFile("declared.txt"));
}
void LoadEffect(const std::string& path) {
    ID3DXEffect* effect = nullptr;
    ID3DXBuffer* errors = nullptr;
    D3DXCreateEffectFromFileA(Vorn::Graphic::GetDevice(), path.c_str(), nullptr, nullptr, 0,
                              nullptr, &effect, &errors);
    EXPECT_NE(effect, nullptr) << (errors ? static_cast<char*>(errors->GetBufferPointer()) : "");
    if (effect)
        effect->Release();
    if (errors)
        errors->Release();
}

using Reader = void (*)(const std::string& path);
/// Null where the name tells none.
Reader ReaderOf(const std::string& file) {
    static const std::pair<const char*, Reader> readers[] = {
        {R"(data/entity/[^/]*\.(ent|var))", LoadEntity},
        {R"(.*\.scene)", LoadScene},
        {R"(data/.*\.pack|data/pack/.*)", LoadPack},
        {R"(data/mat/.*\.json)", LoadMaterial},
        {R"(data/trigger/.*)", LoadTrigger},
        {R"(.*physics\.json)", LoadPhysics},
        {R"(check\.json)", LoadDeclarations},
        {R"(.*\.fnt)", LoadFont},
        {R"(.*\.input)", LoadRecording},
        {R"(.*\.fx)", LoadEffect}};
    for (const auto& [pattern, reader] : readers)
        if (std::regex_match(file, std::regex(pattern)))
            return reader;
    return nullptr;
}

/// Calls `visit` with the text of `root` once for each value in it, which has a wrong type then,
/// and with the value's key.
void Spoil(const Json::Value& root, Json::Value& at, const std::string& key,
           const std::function<void(const std::string&, const std::string&)>& visit) {
    if (at.isObject() && !at.empty()) {
        for (const std::string& member : at.getMemberNames())
            Spoil(root, at[member], member, visit);
    } else if (at.isArray() && !at.empty()) {
        for (Json::Value& element : at)
            Spoil(root, element, key, visit);
    } else {
        const Json::Value kept = at;
        at = Vorn::ParseJson(R"({"an": "object"})");
        if (kept.isObject())
            at = "a text";
        visit(Vorn::WriteJson(root), key);
        at = kept;
    }
}

struct Outcome {
    /// -1 where a signal ended the program.
    int status = -1;
    std::string out;
};

/// What a page says may leave out lines by "...", and scripts say what they do in lines of "==".
testing::AssertionResult Prints(const std::string& out, const std::string& told) {
    std::vector<std::string> lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::istringstream expected(told);
    auto next = lines.begin();
    bool gap = false;
    for (std::string line; std::getline(expected, line);) {
        if (line.rfind("== ", 0) == 0)
            continue;
        if (line == "...") {
            gap = true;
            continue;
        }
        const auto found = std::find(next, lines.end(), line);
        if (found == lines.end() || (!gap && found != next))
            return testing::AssertionFailure() << "not there: " << line << "\nin\n" << out;
        next = found + 1;
        gap = false;
    }
    return next == lines.end() || gap ? testing::AssertionSuccess()
                                      : testing::AssertionFailure() << "more: " << *next;
}

/// In an empty folder with the page's files and the engine's own data.
class Example : public Docs::InFolder, public testing::WithParamInterface<Block> {
protected:
    Example() {
        fs::current_path(Docs::root);
        page = Docs::BlocksOf(block.page);
        fs::current_path(folder.Path());
        WriteFiles(block.page);
        LoadPhysics("data/physics.json");
        for (const Block& other : page)
            if (other.language == "cpp")
                code += other.text;
    }

    Outcome Run(const std::string& command) const {
        const std::string all = "export TMPDIR='" + folder.Path().string() + "' PATH='" +
                                fs::path(VORN_PROGRAM).parent_path().string() +
                                "':\"$PATH\"; timeout 60 " + command + " >'" + folder / "out.txt" +
                                "' </dev/null";
        const int status = std::system(all.c_str());
        const std::regex here(folder.Path().string());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                std::regex_replace(Vorn::TextFromFile(folder / "out.txt"), here, "/tmp")};
    }
    void RunAndCompare(const std::string& command, const Block* told) const {
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.status, 0) << outcome.out;
        if (told) {
            EXPECT_TRUE(Prints(outcome.out, told->text)) << told->Place();
        }
    }
    /// The block behind this one, if it is the output of it.
    const Block* Told() const {
        for (std::size_t i = 1; i < page.size(); ++i)
            if (page[i - 1].line == block.line && page[i].language == "output" &&
                page[i].tag.empty())
                return &page[i];
        return nullptr;
    }

    void RunProgram() const {
        // Whoever waits for Escape gets it, and then the cross of the window.
        const std::string input = folder.File(
            "keys.input", "vorn-input 1\nframe\nframe\nmessage 1 256 27 65537 1 0 0\nevent\nframe\n"
                          "frame\nmessage 1 16 0 0 2 0 0\nevent\nframe\nframe\n");
        RunAndCompare("'" VORN_DOCS_PROGRAMS "' " + block.Name() + " '" +
                          (block.tag == "window" ? input : "") + "'",
                      Told());
    }
    void RunSample() const {
        fs::current_path(Docs::root);
        const std::string name = std::regex_replace(block.tag, std::regex("-"), "_");
        RunAndCompare("'" VORN_SAMPLES "/sample_" + name + "'", &block);
    }

    void LoadFile(Reader reader) {
        if (reader == LoadEffect)
            Open(64, 64);
        EXPECT_NO_THROW(reader(block.tag));
        if (block.language != "json")
            return;
        // A reader that knows a key does not take each value for it; keys of a host's own class
        // stand in the page's code.
        Json::Value root = Vorn::ParseJson(block.text);
        Spoil(root, root, "", [&](const std::string& text, const std::string& key) {
            folder.File(block.tag, text);
            bool refused = code.find("\"" + key + "\"") != std::string::npos;
            try {
                reader(block.tag);
            } catch (const std::exception&) {
                refused = true;
            }
            EXPECT_TRUE(refused) << "nobody reads " << key;
        });
    }

    /// `block` laid over the page's entity files, and what is written of it.
    std::string Differences(const std::string& element) const {
        for (const Block& file : page)
            if (file.IsFile() && ReaderOf(file.tag) == LoadEntity)
                LoadEntity(file.tag);
        Vorn::Scene scene;
        scene.Deserialize(R"({"Entities": [)" + element + "]}");
        scene.Init();
        std::string text;
        scene.EntityList().front()->Serialize(text, false);
        scene.Deinit();
        return text;
    }

    const Block& block = GetParam();
    std::vector<Block> page;
    /// All of the page's C++.
    std::string code;
};

TEST_P(Example, Works) {
    const std::string kind = block.language + " " + block.tag;
    const Reader reader = block.IsFile() ? ReaderOf(block.tag) : nullptr;
    if (block.IsProgram()) {
        RunProgram();
    } else if (block.IsFragment() || kind == "cpp top") {
        SUCCEED() << "compiled; a fragment is a test of its own";
    } else if (reader) {
        LoadFile(reader);
    } else if (kind == "hlsl ") {
        Open(64, 64);
        LoadEffect(folder.File("example.fx", block.text));
    } else if (kind == "json element") {
        EXPECT_NO_THROW(Differences(block.text));
    } else if (kind == "json differences") {
        const auto element = std::find_if(
            page.begin(), page.end(), [](const Block& other) { return other.tag == "element"; });
        ASSERT_NE(element, page.end());
        EXPECT_EQ(Differences(element->text), block.text);
    } else if (kind == "sh run") {
        RunAndCompare("bash -eu " + folder.File("commands.sh", block.text), Told());
    } else if (block.language == "output" && !block.tag.empty()) {
        RunSample();
    } else if (kind == "output " || kind == "sh " || kind == "text ") {
        SUCCEED() << "compared with what stands before it; command lines have a test of their own";
    } else if (kind == "cmake CMakeLists.txt" || (block.language == "text" && block.IsFile())) {
        SUCCEED() << "taken by tests/install, or by a command of the page";
    } else {
        FAIL() << "no rule takes ```" << kind
               << ": say behind the language which file or what it is, as HACKING.md tells under "
                  "\"An example in a document\"";
    }
}
INSTANTIATE_TEST_SUITE_P(Docs, Example, testing::ValuesIn(Docs::AllBlocks()), Name);

// Command lines: those of the pages that begin with a script of ours or with vorn, in blocks or
// behind four blanks.

class Commands : public testing::TestWithParam<std::string> {};

TEST_P(Commands, NameWhatThereIs) {
    std::ifstream in(GetParam());
    std::string line;
    const std::regex command(R"(^(?:    )?((?:scripts/\w+|vorn)(?: .*)?)$)");
    for (int number = 1; std::getline(in, line); ++number) {
        std::smatch match;
        if (!std::regex_match(line, match, command))
            continue;
        SCOPED_TRACE(GetParam() + ":" + std::to_string(number) + ": " + line);
        const std::string text = match[1];
        std::istringstream words(text.substr(0, text.find("  ")));
        std::string program, verb, help, word;
        words >> program >> verb;
        if (program == "vorn") {
            const std::string ask = "'" VORN_PROGRAM "' " + verb + " --help 2>&1";
            FILE* pipe = popen(ask.c_str(), "r");
            for (int c = 0; (c = std::fgetc(pipe)) != EOF;)
                help += static_cast<char>(c);
            EXPECT_EQ(pclose(pipe), 0) << help;
        } else {
            ASSERT_TRUE(fs::exists(program));
            help = Vorn::TextFromFile(program);
            if (program == "scripts/run" && std::isalnum(static_cast<unsigned char>(verb[0])))
                for (const auto& file : fs::directory_iterator("samples/" + verb))
                    if (file.path().extension() == ".cpp")
                        help += Vorn::TextFromFile(file.path().string());
            words.seekg(static_cast<std::streamoff>(program.size()));
        }
        while (words >> word) {
            if (word == "--")
                break; // a game's own behind it
            const std::string option = word.substr(0, word.find('='));
            if (option[0] != '-' || option.rfind("--benchmark_", 0) == 0)
                continue;
            EXPECT_TRUE(std::regex_search(help, std::regex("[^-\\w]" + option + "(?![-\\w])")))
                << "no option " << option;
        }
    }
}
std::string PageName(const testing::TestParamInfo<std::string>& info) {
    return Block{info.param, 0, "", "", ""}.Name();
}
INSTANTIATE_TEST_SUITE_P(Docs, Commands, testing::ValuesIn(Docs::Pages()), PageName);

} // namespace
