// SPDX-License-Identifier: MIT
//
// `vorn`, the author's one command. Each of its commands is a file pair beside this one.
#include "tools/import.hpp"
#include "tools/import/assets.hpp"
#include "tools/shader.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <exception>
#include <iostream>

namespace {

/// What CLI11 makes of wrong arguments has many numbers; ours has one.
constexpr int wrongArguments = 2;

CLI::App* addImport(CLI::App& app, Import::Options& options) {
    CLI::App* command = app.add_subcommand(
        "import", "Makes a model file, materials, textures and a resource pack of a model that "
                  "another program wrote");
    command
        ->add_option("FILE", options.file, "glTF 2.0, FBX, OBJ, Collada and what else Assimp reads")
        ->required();
    command->add_option("-o,--out", options.out, "The game's folder: results go to data/ in it")
        ->type_name("FOLDER")
        ->capture_default_str();
    command->add_option("-n,--name", options.name, "What the results are called; else as FILE")
        ->type_name("NAME")
        ->check(CLI::Validator(
            [](std::string& name) {
                return name == Import::SafeName(name) && !name.empty()
                           ? std::string()
                           : std::string("letters, digits, '-', '_' and '.' behind the first");
            },
            ""));
    command
        ->add_option("-a,--animation", options.animation,
                     "Which animation, by name or number; \"none\" for none; else the first "
                     "that moves")
        ->type_name("NAME|INDEX");
    command->add_option("--from", options.from, "Where in the animation the loop begins")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e6));
    command->add_option("--to", options.to, "Where in the animation the loop ends")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e6));
    command->add_option("-s,--scale", options.scale, "Makes all lengths so many times as long")
        ->type_name("X")
        ->check(CLI::Range(1e-6, 1e6))
        ->capture_default_str();
    command
        ->add_option("-r,--rate", options.rate,
                     "The most keys a second of a bone. The engine moves on by one key a frame "
                     "at the most: stay at or below the frames a second of your slowest player")
        ->type_name("KEYS")
        ->check(CLI::Range(1.0, 240.0))
        ->capture_default_str();
    command->add_flag("-l,--list", options.list, "Tells what FILE holds and writes nothing");
    command->add_flag("-f,--force", options.force, "Replaces results that are there and differ");
    command->add_option("--max-seconds", options.seconds, "Gives up after so much computing")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 86400))
        ->capture_default_str();
    command->add_option("--max-memory", options.megabytes, "Gives up above so much memory")
        ->type_name("MIB")
        ->check(CLI::Range(256, 1 << 20))
        ->capture_default_str();
    command->footer(
        "A source with several materials becomes one model for each, with one skeleton.\n"
        "What is changed or left out is told at the end. Nothing is written on an error.");
    return command;
}

CLI::App* addShader(CLI::App& app, Shader::Options& options) {
    CLI::App* command = app.add_subcommand(
        "shader", "Compiles an effect file, or a shader by itself, as the engine does, and tells "
                  "what came out");
    command->add_option("FILE", options.file, "An effect file; with --entry, a shader's")
        ->required();
    CLI::Option* entry =
        command->add_option("-e,--entry", options.entry, "The function of a shader by itself")
            ->type_name("NAME");
    CLI::Option* profile =
        command->add_option("-p,--profile", options.profile, "What to compile it for: vs_3_0")
            ->type_name("PROFILE");
    entry->needs(profile);
    profile->needs(entry);
    command->add_option("-D,--define", options.defines, "A macro; without a value it is 1")
        ->type_name("NAME[=VALUE]")
        ->allow_extra_args(false);
    command->footer("Errors and warnings name file and line, as a compiler does.");
    return command;
}

int run(int argc, char** argv) {
    CLI::App app("The tool of who makes games with Vorn.", "vorn");
    app.set_version_flag("--version", "vorn " VORN_VERSION);
    app.require_subcommand(1);
    Import::Options options;
    const CLI::App* import = addImport(app, options);
    Shader::Options shaderOptions;
    const CLI::App* shader = addShader(app, shaderOptions);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        std::cerr << "vorn: " << error.what() << "\n\n"
                  << (import->parsed()   ? import->help("vorn")
                      : shader->parsed() ? shader->help("vorn")
                                         : app.help());
        return wrongArguments;
    }
    return shader->parsed() ? Shader::Run(shaderOptions) : Import::Run(options);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& exception) {
        std::cerr << "vorn: " << exception.what() << "\n";
        return 1;
    }
}
