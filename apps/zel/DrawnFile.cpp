#include "DrawnFile.h"

#include <algorithm>

// One colour throughout, or nothing but transparency.
static bool IsPlain(const Bitmap& picture)
{
    const int channels = picture.GetBytesPerPixel(), width = picture.GetWidth() * channels;
    const unsigned char* const first = picture.GetLine(0);
    for (int y = 0; y < picture.GetHeight(); y++) {
        const unsigned char* const line = picture.GetLine(y);
        if (!std::equal(line + channels, line + width, line) || !std::equal(line, line + channels, first))
            return false;
    }
    return true;
}

DrawnFile::DrawnFile(const Console& console, const std::string& name, const PictureSettings& settings)
    : m_console(console), m_name(name), m_settings(settings), m_canvas(settings), m_reading(console, name)
{
}

ExitCode DrawnFile::Open()
{
    const bool hasDriver = m_canvas.Start();
    m_file = m_reading.Finish();
    if (!m_file)
        return EXIT_UNREADABLE;
    if (!hasDriver) {
        m_console.Fail("no OpenGL driver gives a picture of " + std::to_string(m_settings.size.cx) + "x" +
                       std::to_string(m_settings.size.cy) + " pixels");
        return EXIT_NO_GL;
    }
    if (m_canvas.GetAntialias() < m_settings.antialias)
        m_console.Say("--antialias " + std::to_string(m_canvas.GetAntialias()) + ": the driver draws no larger pictures");
    if (const std::string lack = m_canvas.SetScene(*m_file->scene); !lack.empty()) {
        m_console.Fail(m_name + ": " + lack);
        return EXIT_USAGE;
    }
    if (m_settings.hasTime && m_file->scene->GetTickCount() != m_settings.time)
        m_console.Say(m_name + ": no frame " + std::to_string(m_settings.time) + "; drawn is " +
                      std::to_string(m_file->scene->GetTickCount()));
    return EXIT_DONE;
}

Picture DrawnFile::Draw(int number)
{
    Picture picture = m_canvas.Draw(number);
    if (picture && number == 0 && IsPlain(*picture))
        picture = DrawOpaque();
    if (!picture)
        m_console.Fail(m_name + ": not enough memory for the picture");
    return picture;
}

// Not a few files have materials that let all light through, and mean the opposite.
Picture DrawnFile::DrawOpaque()
{
    m_canvas.IgnoreTransparency();
    Picture picture = m_canvas.Draw(0);
    if (picture && IsPlain(*picture))
        m_console.Say(m_name + ": there is nothing to see in the picture");
    else if (picture)
        m_console.Say(m_name + ": all of it is transparent; drawn as if it were not");
    return picture;
}
