// Files that become others: one, many, and many that become one.

#include <filesystem>
#include <set>

#include "zel/ZelCase.h"

namespace {

std::set<std::string> FilesIn(const std::string& folder)
{
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        names.insert(entry.path().filename());
    return names;
}

}

TEST_F(Zel, ConvertsAFileAsTheOptionsTell)
{
    const auto before = Info(MODEL);
    const float width = before["bounds"]["max"][0].get<float>(), height = before["bounds"]["max"][2].get<float>();
    const struct {
        const char* options;
        int objects, quads;
        float scale;
    } rows[] = {
        {"", 9, 246, 1},
        {"--export-triangulate", 9, 0, 1},
        {"--export-quadrangulate", 9, 246, 1},
        {"--import-triangulate", 9, 0, 1},
        {"--export-concatenate", 1, -1, 1},
        {"--import-concatenate", 1, -1, 1},
        {"--export-remove-groups --export-global-coordinates", 16, -1, 1},
        {"--unit=cm", 9, 246, 100},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options);
        const Outcome run = Call("convert " + std::string(row.options) + " " + MODEL + " " + folder.Name("out.3dif"));
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(run.out + run.talk, "");    // nothing to tell, and no bar off a terminal
        const auto after = Info(folder.Name("out.3dif"));
        EXPECT_EQ(after["objects"], row.objects);
        if (row.quads >= 0) {
            EXPECT_EQ(after["faces_by_size"]["4"], row.quads);
        }
        EXPECT_NEAR(after["bounds"]["max"][0].get<float>(), width * row.scale, 1e-4 * width * row.scale);
    }
    EXPECT_EQ(Call("convert --up-axis=y " + MODEL + " " + folder.Name("up.3dif")).code, 0);
    EXPECT_NEAR(Info(folder.Name("up.3dif"))["bounds"]["max"][1].get<float>(), height, 1e-4 * height);
}

TEST_F(Zel, WritesTheFormAskedFor)
{
    EXPECT_EQ(Call("convert --form=text " + MODEL + " " + folder.Name("text.ply")).code, 0);
    EXPECT_EQ(folder.Read("text.ply").rfind("ply\nformat ascii", 0), 0u);
    EXPECT_EQ(Call("convert " + MODEL + " " + folder.Name("plain.ply")).code, 0);
    EXPECT_EQ(folder.Read("plain.ply").rfind("ply\nformat binary", 0), 0u);
}

TEST_F(Zel, ReportsWhatWasDoneAndLost)
{
    const std::string target = folder.Name("out.stl");
    const auto report = [&](const std::string& options) { return Call("convert -q " + options + " " + MODEL + " " + target); };
    const Outcome text = report("--report");
    EXPECT_NE(text.out.find("export: Converting Whole scene from local to global coordinates\n"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("export: loss: Removing the groups (3)\n"), std::string::npos) << text.out;
    const Outcome strict = report("--report=json --strict");
    EXPECT_EQ(strict.code, 4);
    const auto json = nlohmann::json::parse(strict.out);
    EXPECT_EQ(json["target"], target);
    EXPECT_EQ(json["written"], true);
    EXPECT_EQ(Call("convert --strict " + MODEL + " " + folder.Name("out.3dif")).code, 0);    // the native file holds all

    const std::string mixed = folder.Write("mixed.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\no face\nf 1 2 3\no line\nl 1 2\n");
    for (const char* const option : {"--import-concatenate ", "--export-concatenate "})
        EXPECT_NE(
            Call(std::string("convert --report ") + option + mixed + " " + folder.Name("out.3dif")).out.find("loss: Curves left out: 1"),
            std::string::npos)
            << option;

    const Outcome failed = Call("convert --report=json " + folder.Name("missing.obj") + " " + target);
    EXPECT_EQ(failed.code, 3);
    EXPECT_EQ(nlohmann::json::parse(failed.out)["written"], false);
}

TEST_F(Zel, NeverWritesOverAnInputByAccident)
{
    const std::string input = folder.Name("in.3dif");
    ASSERT_EQ(Call("convert " + MODEL + " " + input).code, 0);
    const std::string bytes = folder.Read("in.3dif");
    std::filesystem::create_symlink(input, folder.Name("link.3dif"));
    std::filesystem::create_hard_link(input, folder.Name("hard.3dif"));
    for (const std::string& target : {input, folder.Name("./in.3dif"), folder.Name("link.3dif"), folder.Name("hard.3dif")}) {
        EXPECT_EQ(Call("convert --export-triangulate " + input + " " + target).code, 2);
        EXPECT_EQ(Call("process --triangulate " + input + " -o " + target).code, 2);
        EXPECT_EQ(Call("merge " + target + " " + MODEL + " " + input).code, 2);
    }
    EXPECT_EQ(Call("convert --format=3dif --out-dir=" + folder.Name() + " " + MODEL + " " + input).code, 2);
    EXPECT_TRUE(folder.Read("in.3dif") == bytes);
    EXPECT_EQ(Call("process --triangulate --overwrite-input " + input + " -o " + input).code, 0);
    EXPECT_EQ(Info(input)["faces_by_size"]["4"], 0);
}

TEST_F(Zel, ABrokenFileOfABatchCostsItselfAlone)
{
    const std::string out = folder.Name("out");
    std::string files;
    for (int i = 1; i <= 3; i++)
        files += WriteTriangle("t" + std::to_string(i) + ".obj", i) + " ";
    files += folder.Write("broken.3ds", "nothing of the kind") + " ";
    const Outcome run = Call("convert --format=3dif --jobs=3 --report=json --out-dir=" + out + " " + files);
    EXPECT_EQ(run.code, 6);
    EXPECT_EQ(FilesIn(out), (std::set<std::string>{"t1.3dif", "t2.3dif", "t3.3dif"}));
    EXPECT_NE(run.talk.find("zel: 4 files: 3 written, 1 failed\n"), std::string::npos) << run.talk;
    EXPECT_EQ(std::count(run.talk.begin(), run.talk.end(), '\n'), 2) << run.talk;
    const auto report = nlohmann::json::parse(run.out);
    ASSERT_EQ(report.size(), 4u);
    for (std::size_t i = 0; i < 4; i++) {
        EXPECT_EQ(report[i]["written"], i < 3);
        EXPECT_EQ(report[i]["exit_code"], i < 3 ? 0 : 3);
    }
    EXPECT_EQ(Info(out + "/t3.3dif")["bounds"]["max"][0], 3);
}

TEST_F(Zel, ABatchKeepsFilesApart)
{
    std::string files;
    int size = 0;
    for (const char* const name : {"in/t.obj", "in/a/t.obj", "in/b/t.obj"})
        files += WriteTriangle(name, ++size) + " ";
    const struct {
        const char* option;
        std::string targets[3];
    } rows[] = {{"", {"t.3dif", "t-2.3dif", "t-3.3dif"}},
                {"--keep-tree", {folder.Name("in/t.3dif"), folder.Name("in/a/t.3dif"), folder.Name("in/b/t.3dif")}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.option);
        const std::string out = folder.Name(std::string("out") + row.option + "/");
        EXPECT_EQ(Call("convert --format=3dif " + std::string(row.option) + " --out-dir=" + out + " " + files).code, 0);
        for (int i = 0; i < 3; i++)
            EXPECT_EQ(Info(out + row.targets[i])["bounds"]["max"][0], i + 1);
    }
    // Never outside.
    EXPECT_EQ(
        Call("convert --format=3dif --keep-tree --out-dir=" + folder.Name("up") + " ../../../../../../../.." + folder.Name("in/t.obj"))
            .code,
        0);
    EXPECT_EQ(Info(folder.Name("up") + folder.Name("in/t.3dif"))["faces"], 1);
}

TEST_F(Zel, ShardsTogetherGiveTheWhole)
{
    std::string files;
    std::set<std::string> all;
    for (int i = 1; i <= 7; i++) {
        files += WriteTriangle("t" + std::to_string(i) + ".obj", i) + " ";
        all.insert("t" + std::to_string(i) + ".3dif");
    }
    std::set<std::string> found;
    for (const char* const shard : {"1/3", "2/3", "3/3"}) {
        const std::string out = folder.Name(std::string("out") + shard[0]);
        EXPECT_EQ(Call("convert -q --format=3DIF --out-dir=" + out + " --shard=" + shard + " " + files).code, 0);
        for (const std::string& name : FilesIn(out))
            EXPECT_TRUE(found.insert(name).second) << name;
    }
    EXPECT_EQ(found, all);
    EXPECT_EQ(Call("convert --format=3dif --out-dir=" + folder.Name("more") + " --shard=9/9 " + files).code, 0);    // none left for it
}

TEST_F(Zel, MergesFilesIntoOne)
{
    const std::string triangle = WriteTriangle("deep/t.obj", 2), out = folder.Name("out.3dif");
    EXPECT_EQ(Call("merge " + out + " " + MODEL + " " + triangle + " " + MODEL).code, 0);
    const auto one = Info(MODEL), all = Info(out);
    EXPECT_EQ(all["faces"], 2 * one["faces"].get<int>() + 1);
    EXPECT_LE(all["materials"].get<int>(), one["materials"].get<int>() + 1);    // equal ones are joined
    // In the unit of the first.
    ASSERT_EQ(Call("convert --unit=cm " + MODEL + " " + folder.Name("cm.3dif")).code, 0);
    EXPECT_EQ(Call("merge " + out + " " + MODEL + " " + folder.Name("cm.3dif")).code, 0);
    EXPECT_NEAR(Info(out)["bounds"]["max"][0].get<double>(), one["bounds"]["max"][0].get<double>(), 1e-3);
}

TEST_F(Zel, TakesTexturesAlong)
{
    folder.Write("secret.png", "S");
    folder.Write("in/here.png", "H");
    folder.Write("in/scene.mtl",
                 "newmtl a\nKd 1 0 0\nmap_Kd here.png\nnewmtl b\nKd 0 0 1\nmap_Kd ../secret.png\nnewmtl c\nmap_Kd away.png\n");
    const std::string scene = folder.Write("in/scene.obj", "mtllib scene.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nusemtl a\nf 1/1 2/1 3/1\n"
                                                           "usemtl b\nf 3/1 2/1 1/1\nusemtl c\nf 1/1 3/1 2/1\n");
    const auto maps = Info(scene)["maps"];
    ASSERT_EQ(maps.size(), 3u);
    for (const auto& map : maps)
        EXPECT_EQ(map["found"].is_null(), map["material"] == "c") << map;
    std::filesystem::create_directories(folder.Name("out"));
    const std::string command = "convert --textures=maps " + scene + " " + folder.Name("out/scene.3dif");
    EXPECT_EQ(Call(command).code, 0);
    EXPECT_EQ(FilesIn(folder.Name("out/maps")), (std::set<std::string>{"here.png"}));
    EXPECT_EQ(Call(command + " --textures-from-anywhere --export-rename-textures").code, 0);
    EXPECT_EQ(FilesIn(folder.Name("out/maps")), (std::set<std::string>{"here.png", "here1.png", "secret.png"}));
}
