#include "Convert.h"

#include <charconv>
#include <map>
#include <optional>

#include "ProgressBar.h"

namespace {

/// A part of a list: every count-th file from the number-th on.
struct Shard {
    unsigned int number = 1, count = 1;
};

std::optional<Shard> ParseShard(const std::string& text)
{
    Shard shard;
    const char* const end = text.data() + text.size();
    const auto [slash, error] = std::from_chars(text.data(), end, shard.number);
    if (error != std::errc() || slash == end || *slash != '/')
        return std::nullopt;
    const auto [rest, countError] = std::from_chars(slash + 1, end, shard.count);
    if (countError != std::errc() || rest != end || shard.number < 1 || shard.number > shard.count)
        return std::nullopt;
    return shard;
}

}

ConvertVerb::ConvertVerb(CLI::App& app)
    : m_verb(app.add_subcommand("convert", "Converts a file (IN OUT), or many (IN... --out-dir DIR --format EXT)")), m_input(*m_verb),
      m_output(*m_verb)
{
    constexpr const char* BATCH = "Many files";
    m_verb->add_option("FILE", m_files, "IN OUT, or IN... with --out-dir")->required();
    CLI::Option* const folder = m_verb->add_option("--out-dir", m_folder, "Write each file to this folder, under its own name");
    folder->group(BATCH)->needs(m_verb->get_option("--format"));
    m_verb->add_option("-j,--jobs", m_jobs, "Files at a time, each in a process of its own")
        ->group(BATCH)
        ->check(CLI::Range(1u, 1024u))
        ->needs(folder);
    m_verb->add_option("--shard", m_shard, "I/N: only the I-th of N parts of the list, for array jobs; I from 1")
        ->group(BATCH)
        ->check([](const std::string& text) { return ParseShard(text) ? std::string() : "not I/N with I from 1 to N: " + text; })
        ->needs(folder);
}

ExitCode ConvertVerb::Run(const Console& console) const
{
    if (!m_folder.empty())
        return ConvertMany(console);
    if (m_files.size() == 2)
        return ConvertFile(console, m_files[0], m_files[1]);
    console.Fail("convert takes IN OUT, or --out-dir and --format for many files (see zel convert --help)");
    return EXIT_USAGE;
}

ExitCode ConvertVerb::ConvertFile(const Console& console, const std::string& source, const std::string& target) const
{
    const InputFiles inputs({source});
    unsigned int fileClass;
    if (m_output.IsInput(console, target, inputs) || !m_output.GetFormat(console, fileClass))
        return EXIT_USAGE;    // before the time that reading takes
    const ProgressBar bar(console);
    C3DConversionReport report;
    const std::optional<SceneFile> file = m_input.Read(console, source, report);
    if (file)
        return m_output.Write(console, *file->scene, target, inputs, report);
    m_output.PrintFailure(inputs, target, report);
    return EXIT_UNREADABLE;
}

ExitCode ConvertVerb::ConvertMany(const Console& console) const
{
    std::vector<BatchItem> items;
    if (!ListItems(console, items))
        return EXIT_USAGE;
    if (!fileCreateDirectory(Utf8ToWide(m_folder), true)) {
        console.Fail(m_folder + ": can't be made");
        return EXIT_FAILED;
    }
    return Batch(console, std::move(items), m_jobs)
        .Run([&](const BatchItem& item) { return ConvertFile(console, item.source, item.target); }, m_output.IsJsonReport());
}

// The whole list is looked at before a part of it is taken, so that all parts agree.
bool ConvertVerb::ListItems(const Console& console, std::vector<BatchItem>& items) const
{
    unsigned int fileClass;
    if (!m_output.GetFormat(console, fileClass))
        return false;
    CFileExt format;
    fileGetExtensionInfo(fileClass, &format);
    const std::string extension = WideToUtf8(format.GetMainExtension());
    const InputFiles inputs(m_files);
    const Shard shard = ParseShard(m_shard).value_or(Shard());
    std::map<std::string, std::string> sourceOf;
    for (std::size_t i = 0; i < m_files.size(); i++) {
        const std::string title = WideToUtf8(fileStripExtension(fileStripPath(Utf8ToWide(m_files[i]))));
        const std::string target = WideToUtf8(fileAddSlash(Utf8ToWide(m_folder))) + title + extension;
        if (m_output.IsInput(console, target, inputs))
            return false;
        if (const auto [other, isNew] = sourceOf.emplace(target, m_files[i]); !isNew) {
            console.Fail(target + " would be made of both " + other->second + " and " + m_files[i]);
            return false;
        }
        if (i % shard.count == shard.number - 1)
            items.push_back({m_files[i], target});
    }
    return true;
}
