#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "3dzel.h"

/// Runs the viewer from a text, one step a line, as docs/viewer-script.md tells. The steps that follow one which opens a dialog run
/// while it is open, and reach it.
class Script : public CWnd {
public:
    explicit Script(C3DFrameViewer& frame);
    ~Script() override;

    /// Begins with the file's first step once the loop runs; "-" is standard input, whose steps run as they come. False, with the reason, when it
    /// can't be read.
    bool Start(const std::string& file, std::string& trouble);
    /// A step could not be run; the script ended there.
    bool HasFailed() const { return m_failed; }

    void OnTimer(unsigned int id) override;

private:
    /// A line: its words, of which quoted ones may hold blanks.
    using Words = std::vector<std::string>;
    struct Step {
        int line;
        Words words;
    };

    /// What has come by now, up to the last whole line.
    void Read();
    void AddLine(const std::string& line);
    void Run(const Step& step);
    /// Runs the next step that is there; ends the program behind the last one.
    void GoOn();

    // Steps: empty for one that was done, else what is wrong with it
    std::string Open(const Words& words);
    std::string Mouse(const Words& words);
    std::string Key(const Words& words);
    std::string Wait(const Words& words);
    std::string Resize(const Words& words);
    std::string Picture(const Words& words);
    std::string Query(const Words& words);
    std::string Answer(const Words& words);
    std::string Command(const Words& words);
    void Settle();

    C3DFrameViewer& m_frame;
    int m_input = -1;    ///< file descriptor; -1: all is read
    std::string m_unread;
    int m_lineCount = 0;
    std::deque<Step> m_steps;
    unsigned int m_buttons = 0;    ///< INPUT_LEFT and its kin, down in the view
    bool m_busy = false;           ///< a step runs that no other may run inside of
    bool m_failed = false;
    int m_rest = 0;
    std::int64_t m_waitUntil = 0;    ///< milliseconds
};
