#pragma once

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <sys/wait.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TempFolder.h"

inline const std::string MODEL = MODELS "/pavilion.dae";

struct Outcome {
    int code;
    std::string out, talk;
};

/// Runs the tool as a user does, and a folder of the test's own for its files.
class Zel : public testing::Test {
protected:
    Outcome Call(const std::string& arguments)
    {
        const std::string talkFile = folder.Name("talk");
        std::FILE* pipe = popen((ZEL " " + arguments + " 2>" + talkFile).c_str(), "r");
        Outcome run;
        char buffer[4096];
        for (std::size_t got; (got = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
            run.out.append(buffer, got);
        run.code = WEXITSTATUS(pclose(pipe));
        std::ostringstream talk;
        talk << std::ifstream(talkFile).rdbuf();
        run.talk = talk.str();
        return run;
    }
    nlohmann::json Info(const std::string& file) { return nlohmann::json::parse(Call("info --json " + file).out); }
    /// A triangle of that size, as a text file.
    std::string WriteTriangle(const std::string& name, int size)
    {
        const std::string s = std::to_string(size);
        return folder.Write(name, "o t\nv 0 0 0\nv " + s + " 0 0\nv 0 " + s + " 0\nf 1 2 3\n");
    }

    TempFolder folder;
};
