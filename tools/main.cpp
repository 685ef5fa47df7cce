// SPDX-License-Identifier: MIT
//
// `vorn`, the author's one command. Each of its commands is a file pair beside this one.
#include "tools/check.hpp"
#include "tools/import.hpp"
#include "tools/import/assets.hpp"
#include "tools/project/commands.hpp"
#include "tools/schema.hpp"
#include "tools/shader.hpp"
#include "tools/view.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <exception>
#include <functional>
#include <iostream>
#include <map>

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

CLI::App* addCheck(CLI::App& app, Check::Options& options) {
    CLI::App* command = app.add_subcommand(
        "check", "Tells the faults of a game's data, which the engine passes over in silence");
    command->add_option("DIRECTORY", options.directory, "The game's folder, or a part of it")
        ->required()
        ->check(CLI::ExistingDirectory);
    command
        ->add_option("--root", options.root,
                     "The folder that the game runs in; else the nearest from DIRECTORY upwards "
                     "that holds \"data\"")
        ->type_name("FOLDER")
        ->check(CLI::ExistingDirectory);
    command->add_option("--sarif", options.sarif, "Writes the findings to FILE too, as SARIF 2.1.0")
        ->type_name("FILE");
    command->footer("The exit status is 0 for nothing to tell, 1 for findings.");
    return command;
}

CLI::App* addSchema(CLI::App& app, Schema::Options& options) {
    CLI::App* command = app.add_subcommand(
        "schema", "Writes JSON schemas of all data files, by which editors complete and check");
    CLI::Option* directory =
        command->add_option("DIRECTORY", options.directory, "Where the schemas go");
    command
        ->add_option("--game", options.game,
                     "The game's folder: keys that its check.json declares are in the schemas")
        ->type_name("FOLDER")
        ->needs(directory);
    // For who works on the engine.
    CLI::Option* pages = command->add_option("--pages", options.pages)->group("");
    pages->excludes(directory);
    command->callback([directory, pages] {
        if (directory->count() + pages->count() == 0)
            throw CLI::RequiredError("DIRECTORY");
    });
    return command;
}

CLI::App* addView(CLI::App& app, View::Options& options) {
    CLI::App* command = app.add_subcommand(
        "view", "Shows a model, material, entity, emitter, effect, scene or picture of a game in a "
                "window, again whenever its files change");
    command->add_option("FILE", options.file, "Wherever it lies; its game is found from there")
        ->required();
    command->add_option("-p,--picture", options.picture, "Saves a picture and needs no display")
        ->type_name("OUT.png");
    command
        ->add_option_function<std::string>(
            "-s,--size",
            [&options](const std::string& size) {
                if (!View::ReadSize(size, options))
                    throw CLI::ValidationError("--size", "is WIDTHxHEIGHT, 64x64 to 4096x4096");
            },
            "Of the window or the picture (unit: pixels)")
        ->type_name("WxH");
    command->add_option("--yaw", options.yaw, "Where the camera stands about it")
        ->type_name("DEGREES")
        ->check(CLI::Range(-360.0, 360.0));
    command->add_option("--pitch", options.pitch, "Above it, or below with less than 0")
        ->type_name("DEGREES")
        ->check(CLI::Range(-90.0, 90.0));
    command->add_option("--distance", options.distance, "Of the camera; else all of it is seen")
        ->type_name("X")
        ->check(CLI::Range(1e-3, 1e6));
    command->add_option("-t,--time", options.time, "That has passed before the picture")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 600.0));
    command
        ->add_option("--on", options.on,
                     "What a material or an effect is shown on: sphere, "
                     "cube, plane, or a mesh of the game")
        ->type_name("MESH");
    command
        ->add_option_function<std::string>(
            "--show",
            [&options](const std::string& list) {
                if (!View::ReadShown(list, options.shown))
                    throw CLI::ValidationError(
                        "--show", "takes grid, bones, volumes, wire, normals, texture, panel");
            },
            "All that is drawn beside the thing, with commas; \"none\" for nothing")
        ->type_name("LIST");
    command->add_flag("--panel", options.panel, "The panel is in the picture too");
    command->footer("Drag turns, right drag moves, the wheel goes nearer. docs/view.md has the "
                    "keys.");
    return command;
}

int run(int argc, char** argv) {
    CLI::App app("The tool of who makes games with Vorn.", "vorn");
    app.set_version_flag("--version", "vorn " VORN_VERSION);
    app.require_subcommand(1);
    Import::Options import;
    Shader::Options shader;
    Check::Options check;
    Schema::Options schema;
    View::Options view;
    Project::Commands project(app);
    const std::map<const CLI::App*, std::function<int()>> others = {
        {addImport(app, import), [&] { return Import::Run(import); }},
        {addShader(app, shader), [&] { return Shader::Run(shader); }},
        {addCheck(app, check), [&] { return Check::Run(check); }},
        {addSchema(app, schema), [&] { return Schema::Run(schema); }},
        {addView(app, view), [&] { return View::Run(view); }}};
    argc = project.TakeArguments(argc, argv);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        std::cerr << "vorn: " << error.what() << "\n\n"
                  << (app.get_subcommands().empty() ? app.help()
                                                    : app.get_subcommands()[0]->help("vorn"));
        return wrongArguments;
    }
    const auto found = others.find(app.get_subcommands()[0]);
    return found == others.end() ? project.Run() : found->second();
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
