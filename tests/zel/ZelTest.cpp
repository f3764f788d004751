// The command-line tool as a user meets it: what it prints where, and how it ends.

#include <cstdlib>
#include <filesystem>

#include "zel/ZelCase.h"

TEST_F(Zel, EndsWithTheCodeOfWhatHappened)
{
    std::ofstream(folder.Name("broken.3ds")) << "nothing of the kind";
    std::ofstream(folder.Name("two\nlines.obj")) << "";
    const std::string broken = folder.Name("broken.3ds"), missing = folder.Name("missing.obj");
    const std::string renamed = folder.Name("model.data");
    const std::string motion =
        folder.Write("walk.bvh", "HIERARCHY\nROOT hip\n{\nOFFSET 0 0 0\nCHANNELS 1 Xposition\nEnd Site\n{\nOFFSET 0 1 0\n}\n}\n"
                                 "MOTION\nFrames: 2\nFrame Time: 0.04\n0\n1\n");
    std::filesystem::copy_file(MODEL, renamed);
    const struct {
        std::string arguments;
        int code;
        long lines;    // on standard error
    } rows[] = {
        {"info " + MODEL, 0, 0},
        {"--help", 0, 0},
        {"info --no-such-option x", 2, 1},
        {"process --stats --weld=x " + MODEL, 2, 1},
        {"convert --format=unknown " + MODEL + " " + folder.Name("x"), 2, 1},
        {"convert --format=3dif --out-dir=" + folder.Name("out") + " --shard=0/2 " + MODEL, 2, 1},
        {"convert --format=3dif --out-dir=" + folder.Name("out") + " " + MODEL + " " + MODEL, 2, 1},
        {"merge " + folder.Name("x.3dif") + " " + MODEL + " " + broken, 3, 1},
        {"info '" + folder.Name("two\nlines.obj") + "'", 3, 1},
        {"info " + MODEL + " " + broken, 6, 1},
        {"info " + missing + " " + broken, 3, 2},
        {"info " + folder.Name(""), 3, 1},
        {"info --read-as ply " + MODEL, 3, 1},
        {"info --read-as dae --read-seconds 0 --read-megabytes 0 " + renamed, 0, 0},
        {"info --read-seconds soon " + MODEL, 2, 1},
        {"info " + motion, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome run = Call(row.arguments);
        EXPECT_EQ(run.code, row.code);
        EXPECT_EQ(std::count(run.talk.begin(), run.talk.end(), '\n'), row.lines) << run.talk;
        EXPECT_EQ(run.out.empty(), row.code >= 1 && row.code <= 3) << run.out;
    }
}

TEST_F(Zel, JsonOfAFileAndOfSeveral)
{
    const auto one = nlohmann::json::parse(Call("info --json " + MODEL).out);
    EXPECT_EQ(one["schema"], 1);
    EXPECT_EQ(one["nodes"], 19);
    EXPECT_EQ(one["instances"], 10);
    EXPECT_EQ(one["by_kind"], (nlohmann::json{{"OBJECT_POLYGONAL", 16}, {"OBJECT_GROUP", 3}}));
    EXPECT_EQ(one["points"], 881);
    EXPECT_EQ(one["stored_points"], 305);
    EXPECT_EQ(one["faces_by_size"], (nlohmann::json{{"3", 8}, {"4", 246}, {"more", 11}}));
    EXPECT_EQ(one["time"], (nlohmann::json{{"first", 0}, {"last", 0}, {"rate", nullptr}}));
    EXPECT_EQ(one["unit"], (nlohmann::json{{"mode", 5}, {"centimetres", 100}, {"scale", 100}}));
    EXPECT_FALSE(one.contains("tree"));

    const auto tree = nlohmann::json::parse(Call("info --json --tree " + MODEL).out)["tree"];
    ASSERT_EQ(tree.size(), 19u);
    EXPECT_EQ(tree[1]["name"], "column 1");
    EXPECT_EQ(tree[1]["faces"], 62);
    EXPECT_FLOAT_EQ(tree[1]["matrix"][2][3], 0.6f);
    EXPECT_EQ(tree[2]["instance"], true);

    const auto failed = nlohmann::json::parse(Call("info --json " + MODEL + " " + folder.Name("missing.obj")).out);
    ASSERT_EQ(failed.size(), 2u);
    EXPECT_NE(failed[1]["error"].get<std::string>().find("No such file"), std::string::npos) << failed[1];
}

TEST_F(Zel, WhoReadsSaysWhichAxisPointsUp)
{
    const std::string file = WriteTriangle("t.obj", 3);
    const auto box = [&](const std::string& option) {
        return nlohmann::json::parse(Call("info --json " + option + file).out)["bounds"]["max"];
    };
    EXPECT_EQ(box(""), nlohmann::json({3, 0, 3}));
    EXPECT_EQ(box("--read-up Z "), nlohmann::json({3, 3, 0}));
}

TEST_F(Zel, ProcessesInTheOrderGiven)
{
    // What must hold whatever is done: the area; and the sum of the parts.
    const auto run = [&](const std::string& steps) {
        return nlohmann::json::parse(Call("process --stats --json -q " + steps + " " + MODEL).out);
    };
    const auto before = run("")["before"];
    EXPECT_EQ(before["faces"], 265);
    const struct {
        const char* steps;
        int objects, faces;    // afterwards; -1 is not looked at
    } rows[] = {
        {"--triangulate", 6, 1116 - 2 * 265},
        {"--weld --clean --unify-normals", 6, -1},
        {"--quadrangulate", 6, -1},
        {"--concatenate --explode --concatenate", 1, 759},
        {"--triangulate --merge-coplanar=0.1", 6, -1},
        {"--global-coordinates --concatenate", 1, 759},
        {"--concatenate-by-materials", 4, 759},
        {"--concatenate --slice=100 --concatenate", 1, 759},
        {"--flip-normals --disconnect-faces --generate-uv", 6, 265},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.steps);
        const auto result = run(row.steps);
        EXPECT_NEAR(result["after"]["area"].get<double>(), before["area"].get<double>(), 1e-4 * before["area"].get<double>());
        EXPECT_EQ(result["after"]["objects"], row.objects);
        if (row.faces >= 0) {
            EXPECT_EQ(result["after"]["faces"], row.faces);
        }
    }
    const auto twice = run("--subdivide=1 --triangulate --subdivide=1");
    EXPECT_EQ(twice["steps"][2]["operation"], "subdivide");
    EXPECT_GT(twice["after"]["faces"], 265 * 16);
}

TEST_F(Zel, TellsWhatEachStepDid)
{
    // Two triangles with a gap of 0.01 between them: wider than the tolerance that goes by the size of 141.
    folder.Write("gap.obj", "o t\nv 0 0 0\nv 100 0 0\nv 0 100 0\nv 100.01 0 0\nv 0 100.01 0\nv 100 100 0\nf 1 2 3\nf 4 6 5\n");
    const std::string file = folder.Name("gap.obj");
    const Outcome wide = Call("process --weld 0.1 --flip-normals " + file), close = Call("process --weld " + file);
    EXPECT_EQ(
        wide.talk,
        "zel: weld 0.1\nzel:   before  1 objects, 6 points, 2 faces, 6 corners\nzel:   after   1 objects, 4 points, 2 faces, 6 corners\n"
        "zel: flip-normals\nzel:   before  1 objects, 4 points, 2 faces, 6 corners\nzel:   after   1 objects, 4 points, 2 faces, 6 "
        "corners\n");
    EXPECT_EQ(close.talk, "zel: weld 0.00141: nothing to do\nzel:   before  1 objects, 6 points, 2 faces, 6 corners\n"
                          "zel:   after   1 objects, 6 points, 2 faces, 6 corners\n");
}

TEST_F(Zel, ListsFormatsWithoutLoadingAPlugin)
{
    const Outcome run = Call("formats --json");
    const auto formats = nlohmann::json::parse(run.out)["formats"];
    EXPECT_GE(formats.size(), 60u);
    bool obj = false;
    for (const auto& format : formats)
        obj |= format["extensions"][0] == ".obj" && format["class"] == "OBJ " && format["by"][0] == "assimp" && format["read"] == true;
    EXPECT_TRUE(obj);
    const Outcome traced = Call("formats >/dev/null; LD_DEBUG=files " ZEL " formats");
    EXPECT_EQ(traced.talk.find("zel-io-assimp.so"), std::string::npos);
}

TEST_F(Zel, DamagedSettingsAreToldAndKept)
{
    folder.Write("3dzel/3dprefs.prefs", "no settings");
    const ScopedVariable settings("XDG_CONFIG_HOME", folder.Name(""));
    const Outcome run = Call("info " + MODEL), quiet = Call("info --quiet " + MODEL);
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.talk.find("3dprefs.prefs is damaged"), std::string::npos) << run.talk;
    EXPECT_EQ(quiet.talk, "");
    EXPECT_EQ(folder.Read("3dzel/3dprefs.prefs"), "no settings");
}
