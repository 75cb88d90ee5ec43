#pragma once

#include "support/temp_folder.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <vector>

// The program as a process, with an application folder, sources and a destination of its own.
namespace vardelin::test {

struct Ran {
    int code = -1;
    std::string out;
    std::string err;
};

inline std::string shellWord(std::string_view text)
{
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'')
            result += "'\\''";
        else
            result += c;
    }
    return result + "'";
}

// What a command of the shell prints to its standard output.
inline std::string shell(const std::string& command, int* code = nullptr)
{
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("no shell");
    std::string out;
    std::array<char, 65536> buffer{};
    std::size_t count = 0;
    while ((count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        out.append(buffer.data(), count);
    const int status = ::pclose(pipe);
    if (code != nullptr)
        *code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return out;
}

struct World {
    TempFolder folder;
    std::string app = folder / "app";
    std::string sources = folder / "sources";
    std::string destination = folder / "backups";

    explicit World(bool withProfile = true)
    {
        write("sources/letter.txt", "first\n");
        write("sources/deep/photo.raw", std::string(100'000, 'p'));
        run({"init", app});
        if (withProfile)
            run({"profile", "new", "Home", "--source", sources, "--dest", destination});
    }
    // Folders that a test has made read-only go, too.
    ~World() { shell("chmod -R u+rwX " + shellWord(folder.path())); }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    std::string write(std::string_view name, std::string_view bytes) const
    {
        return folder.write(name, bytes);
    }
    std::string read(std::string_view name) const { return TempFolder::read(folder / name); }
    std::string profilePath() const { return app + "/Profiles/Home.vdp"; }
    // A path as the archive and the profiles name it.
    static std::string drive(const std::string& native)
    {
        std::string path = "C:" + native;
        for (char& c : path)
            c = c == '/' ? '\\' : c;
        return path;
    }

    Ran run(const std::vector<std::string>& arguments) const
    {
        const std::string errors = folder / "stderr";
        std::string command = "cd " + shellWord(folder.path()) + " && " + shellWord(VARDELINCTL) +
                              " --app " + shellWord(app);
        for (const std::string& argument : arguments)
            command += " " + shellWord(argument);
        Ran ran;
        ran.out = shell(command + " 2> " + shellWord(errors), &ran.code);
        ran.err = TempFolder::read(errors);
        return ran;
    }
};

} // namespace vardelin::test
