// The command-line tool where something goes wrong around it: no room, no memory, no time, signals, hostile names.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "zel/ZelCase.h"

TEST_F(Zel, TellsWhatIsWrongInOneLine)
{
    const std::string missing = folder.Name("missing.obj"), none = folder.Name("none/x.");
    const std::string native = folder.Name("native.3dif");
    ASSERT_EQ(Call("convert " + MODEL + " " + native).code, 0);
    const struct {
        std::string arguments;
        int code;
        const char* says;
    } rows[] = {
        {"frobnicate " + MODEL, 2, "no verb frobnicate; there are info, convert"},
        {"process --subdivide 9 " + MODEL, 2, "from 1 to 8: 9"},
        // Said before anything is read: the input is missing, too.
        {"convert " + missing + " " + none + "3dif", 1, "no folder"},
        {"convert " + missing + " " + folder.Name("x.unknown"), 2, "zel formats"},
        {"thumbnail " + missing + " " + folder.Name(""), 1, "is a folder"},
        // No room. Nothing of what could not be printed or written is lost in silence.
        {"info " + MODEL + " >/dev/full", 1, "standard output: No space left on device"},
        {"convert --format 3dif " + MODEL + " /dev/full", 1, "No space left on device"},
        {"--version >/dev/null; ulimit -f 1; " ZEL " convert " + native + " " + folder.Name("x.ply"), 1, "File too large"},
        // Inputs without end.
        {"info --read-as 3dif /dev/zero", 3, "Not a regular file"},
        {"info - <" + MODEL, 3, "--read-as"},
        {"info --read-as 3dif - </dev/null", 3, "standard input is empty"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome run = Call(row.arguments);
        EXPECT_EQ(run.code, row.code);
        EXPECT_EQ(std::count(run.talk.begin(), run.talk.end(), '\n'), 1) << run.talk;
        EXPECT_NE(run.talk.find(row.says), std::string::npos) << run.talk;
        EXPECT_EQ(run.out, "");
    }
}

#if !defined(__SANITIZE_ADDRESS__)    // the sanitizer takes all address space there is
TEST_F(Zel, EndsInOrderWhenMemoryRunsOut)
{
    // A quarter of a million faces: loading, reading, welding and counting give up at different limits. Drawing is left out, for drivers do
    // not survive it.
    const std::string file = folder.Name("large.3dif");
    ASSERT_EQ(Call("process -q --subdivide 5 " + MODEL + " -o " + file).code, 0);
    for (const std::string verb : {"info ", "process --stats --weld --merge-coplanar ", "process --subdivide 1 "}) {
        int failures = 0;
        for (int kilobytes = 30000; kilobytes < 400000; kilobytes = kilobytes * 3 / 2) {
            SCOPED_TRACE(verb + std::to_string(kilobytes));
            const Outcome run = Call("--version >/dev/null; ulimit -v " + std::to_string(kilobytes) + "; " ZEL " -q " + verb + file);
            EXPECT_TRUE(run.code == 0 || run.code == 1 || run.code == 3 || run.code == 127) << run.code;    // 127: it could not be loaded
            EXPECT_EQ(run.code == 0, run.talk.empty()) << run.talk;
            failures += run.code == 1 || run.code == 3;
        }
        EXPECT_GT(failures, 0) << verb;
    }
}
#endif

TEST_F(Zel, NamesCannotSteerTheTerminal)
{
    const std::string evil = "a\x1b[2J\xC2\x9B"
                             "b\x7F\xE2\x80\xAE\xFF"
                             "c",
                      name = evil + "\n.obj";
    folder.Write(name, "mtllib m.mtl\no " + evil + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m\nf 1 2 3\n");
    folder.Write("m.mtl", "newmtl m\nmap_Kd " + evil + ".png\n");
    const std::string file = "'" + folder.Name(name) + "'", missing = "'" + folder.Name("no" + name) + "'";
    for (const std::string& arguments :
         {"info --tree " + file, "info --json --tree " + file, "info " + missing, "process --stats --clean " + file, "'" + evil + "'",
          "convert --report=json " + file + " '" + folder.Name(evil + ".stl") + "'",
          "convert --format 3dif --out-dir " + folder.Name("out") + " " + file + " " + missing}) {
        SCOPED_TRACE(arguments);
        const Outcome run = Call(arguments);
        const std::string all = run.out + run.talk;
        EXPECT_NE(all, "");
        for (const char* control : {"\x1b", "\xC2\x9B", "\x7F", "\xE2\x80\xAE", "\xFF"})
            EXPECT_EQ(all.find(control), std::string::npos) << control[0];
    }
    EXPECT_NE(Call("info --tree " + file).out.find("\\x1b[2J\\u009bb\\x7f\\u202e\\xffc"), std::string::npos);
}

TEST_F(Zel, ReadsStandardInput)
{
    const ScopedVariable temporaries("TMPDIR", folder.Name("tmp"));
    std::filesystem::create_directory(folder.Name("tmp"));
    const auto info = nlohmann::json::parse(Call("info --json --read-as dae - <" + MODEL).out);
    EXPECT_EQ(info["file"], "-");
    EXPECT_EQ(info["objects"], 9);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Name("tmp")));
}

TEST_F(Zel, ASignalLeavesNoFiles)
{
    const ScopedVariable temporaries("TMPDIR", folder.Name("tmp"));
    std::filesystem::create_directory(folder.Name("tmp"));
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGQUIT, SIGALRM, SIGUSR1, SIGXCPU}) {
        SCOPED_TRACE(signal);
        int input[2];
        ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
        const pid_t process = fork();
        if (process == 0) {    // reads from a pipe that nobody closes
            dup2(input[0], STDIN_FILENO);
            execl(ZEL, ZEL, "info", "--read-as", "obj", "-", nullptr);
            _exit(127);
        }
        for (int i = 0; i < 1000 && std::filesystem::is_empty(folder.Name("tmp")); i++)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_FALSE(std::filesystem::is_empty(folder.Name("tmp")));
        kill(process, signal);
        int status = 0;
        waitpid(process, &status, 0);
        EXPECT_TRUE(signal == SIGQUIT ? WIFSIGNALED(status) : WIFEXITED(status) && WEXITSTATUS(status) == 130) << status;
        EXPECT_TRUE(std::filesystem::is_empty(folder.Name("tmp")));
        close(input[0]);
        close(input[1]);
    }
}

TEST_F(Zel, ABatchDoesNotTrustItsJobs)
{
    const ScopedVariable plugins("ZEL_PLUGIN_PATH", BAD_PLUGINS);
    const std::string file = WriteTriangle("t.obj", 1);
    for (const auto& [format, error] : {std::pair("quit", "ended without writing"), std::pair("hang", "took longer than 1 seconds")}) {
        const Outcome run =
            Call("convert --report=json --job-seconds 1 --out-dir " + folder.Name("out") + " --format " + format + " " + file);
        EXPECT_EQ(run.code, 6);
        const auto report = nlohmann::json::parse(run.out);
        EXPECT_EQ(report[0]["written"], false);
        EXPECT_NE(report[0]["error"].get<std::string>().find(error), std::string::npos) << report;
    }
}
