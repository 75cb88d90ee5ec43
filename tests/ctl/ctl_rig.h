#pragma once

#include "ctl/commands.h"
#include "platform/memory/memory_machine.h"
#include "profile/scramble_text.h"

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// The whole program over a machine in memory: arguments in, texts and exit code out.
namespace vardelin::test {

struct CtlRig {
    platform::MemoryMachine world;
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;

    CtlRig()
    {
        world.fileSystem.createFolder("C:\\work");
        world.fileSystem.createFolder("C:\\work\\letters");
        world.fileSystem.replaceFile("C:\\work\\letters\\a.txt", "hello");
        world.fileSystem.createFolder("D:\\backups");
    }

    void putFile(std::string_view path, std::string_view bytes)
    {
        world.fileSystem.replaceFile(path, bytes);
    }

    int run(std::vector<std::string> arguments)
    {
        out.str("");
        err.str("");
        auto parsed = ctl::parseCommandLine(std::move(arguments));
        if (const auto* text = std::get_if<ctl::ParserText>(&parsed)) {
            (text->exitCode == 0 ? out : err) << text->text;
            return text->exitCode;
        }
        ctl::Terminal terminal{in, out, err};
        terminal.workingFolder = "/work";
        return ctl::runCommand(std::get<ctl::CommandLine>(parsed), world.machine(), terminal,
                               "C:\\app");
    }

    std::string plainProfile(std::string_view fileName)
    {
        return profile::unscrambleText(
            world.fileSystem.readAll("C:\\app\\Profiles\\" + std::string(fileName)));
    }
};

} // namespace vardelin::test
