#include "Render.h"

#include "DrawnFile.h"
#include "Turntable.h"

RenderVerb::RenderVerb(CLI::App& app)
    : m_verb(app.add_subcommand("render", "Draws a picture of a file; needs no screen and no GPU")), m_options(*m_verb)
{
    m_verb->add_option("FILE", m_file, "File to read")->required();
    m_verb->add_option("OUT", m_target, "Picture to write: .png, .jpg, .webp, .tif, .gif, .bmp, .tga")->required();
}

ExitCode RenderVerb::Run(const Console& console) const
{
    const PictureSettings settings = m_options.GetPicture();
    const PictureFile target(m_target);
    if (const std::string contradiction = m_options.GetContradiction(); !contradiction.empty()) {
        console.Fail(contradiction);
        return EXIT_USAGE;
    }
    if (const ExitCode code = target.Check(console, settings.transparent, m_file); code != EXIT_DONE)
        return code;
    DrawnFile file(console, m_file, settings);
    if (const ExitCode code = file.Open(); code != EXIT_DONE)
        return code;
    if (settings.turntable.count > 0)
        return WriteTurntable(console, file, settings.turntable, target);
    const Picture picture = file.Draw();
    return picture ? target.Write(console, *picture) : EXIT_FAILED;
}
