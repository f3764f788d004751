#include "Script.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include "Queries.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int PERIOD = 1, PATIENCE = 20;    // milliseconds; the second while another program says nothing
constexpr int REST = 4;                              // periods between steps: what one has posted comes before the next

/// Splits at blanks; "…" keeps them, and \" is a quote in it. A '#' outside of quotes begins a comment.
std::vector<std::string> Split(const std::string& line)
{
    std::vector<std::string> words;
    std::string word;
    bool quoted = false, open = false;
    const auto close = [&] {
        if (open)
            words.push_back(word);
        word.clear();
        open = false;
    };
    for (std::size_t i = 0; i < line.size(); i++) {
        const char c = line[i];
        if (c == '\\' && quoted && i + 1 < line.size())
            word += line[++i];
        else if (c == '"') {
            quoted = !quoted;
            open = true;
        } else if (!quoted && c == '#')
            break;
        else if (!quoted && (c == ' ' || c == '\t' || c == '\r'))
            close();
        else {
            word += c;
            open = true;
        }
    }
    close();
    return words;
}

std::optional<int> ToNumber(const std::string& word)
{
    char* end = nullptr;
    const long value = std::strtol(word.c_str(), &end, 10);
    if (word.empty() || *end != 0 || value < -1000000 || value > 1000000)
        return std::nullopt;
    return static_cast<int>(value);
}

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// "ctrl", "shift" and "alt" in the words from `first` on; nothing for any other word.
std::optional<unsigned int> ToModifiers(const std::vector<std::string>& words, std::size_t first)
{
    unsigned int state = 0;
    for (std::size_t i = first; i < words.size(); i++) {
        const std::string word = Lower(words[i]);
        const unsigned int bit = word == "ctrl" ? +INPUT_CTRL : word == "shift" ? +INPUT_SHIFT : word == "alt" ? +INPUT_ALT : 0u;
        if (!bit)
            return std::nullopt;
        state |= bit;
    }
    return state;
}

/// Name of a command without marks of access keys, points of a dialog, and capitals.
std::string PlainName(const std::string& text)
{
    std::string name;
    for (std::size_t i = 0; i < text.size(); i++)
        if (text[i] != '&' || (i + 1 < text.size() && text[i + 1] == '&'))
            name += text[i];
    while (!name.empty() && name.back() == '.')
        name.pop_back();
    return Lower(name);
}

unsigned int ToFourCC(const std::string& text)
{
    unsigned int code = 0;
    for (const char c : text)
        code = code << 8 | static_cast<unsigned char>(c);
    return code;
}

/// KEY=VALUE into the bag: true and false, whole numbers, numbers with a point, else texts. False for another form.
bool AddParameter(CCustomData& bag, const std::string& word)
{
    const std::size_t sign = word.find('=');
    if (sign != 4)
        return false;
    const unsigned int key = ToFourCC(word.substr(0, sign));
    const std::string value = word.substr(sign + 1);
    char* end = nullptr;
    if (value == "true" || value == "false")
        bag.SetBool(key, value == "true");
    else if (const unsigned long long whole = std::strtoull(value.c_str(), &end, 0); !value.empty() && *end == 0)
        bag.SetUnsigned(key, static_cast<unsigned int>(whole));
    else if (const double number = std::strtod(value.c_str(), &end); !value.empty() && *end == 0)
        bag.SetFloat(key, static_cast<float>(number));
    else
        bag.SetString(key, Utf8ToWide(value));
    return true;
}

/// The key that is shown under that name ("Ctrl+Num 5"), in any case.
bool FindKey(const std::string& name, unsigned int& key, unsigned int& state)
{
    static constexpr unsigned int bits[] = {INPUT_SHIFT, INPUT_CTRL, INPUT_ALT};
    const std::string wanted = Lower(name);
    for (key = 1; key <= VK_F24; key++)
        for (unsigned int modifiers = 0; modifiers < 8; modifiers++) {
            CCommandAccess access;
            access.SetAccess(key, modifiers, 0);
            if (Lower(WideToUtf8(access.GetKeyText())) != wanted)
                continue;
            state = 0;
            for (unsigned int i = 0; i < 3; i++)
                state |= modifiers >> i & 1 ? bits[i] : 0;
            return true;
        }
    return false;
}

}

Script::Script(C3DFrameViewer& frame) : m_frame(frame) {}

Script::~Script()
{
    if (m_input > 0)
        close(m_input);
}

bool Script::Start(const std::string& file, std::string& trouble)
{
    m_input = file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_input < 0) {
        trouble = file + ": " + std::strerror(errno);
        return false;
    }
    if (!GetWindowSystem().CreateWindowPeer(this, nullptr, Text(), CRect())) {
        trouble = "there is no window system";
        return false;
    }
    SetTimer(1, PERIOD);
    return true;
}

void Script::Read()
{
    pollfd ready{m_input, POLLIN, 0};
    char bytes[4096];
    while (m_input >= 0 && poll(&ready, 1, 0) > 0) {
        const ssize_t count = read(m_input, bytes, sizeof(bytes));
        if (count <= 0) {
            if (m_input > 0)
                close(m_input);
            m_input = -1;
            m_unread += '\n';
        } else
            m_unread.append(bytes, static_cast<std::size_t>(count));
    }
    for (std::size_t end; (end = m_unread.find('\n')) != std::string::npos; m_unread.erase(0, end + 1))
        AddLine(m_unread.substr(0, end));
}

void Script::AddLine(const std::string& line)
{
    m_lineCount++;
    if (Words words = Split(line); !words.empty())
        m_steps.push_back({m_lineCount, std::move(words)});
}

// A step may open a dialog, whose loop never enters the handler of a timer again that is under way: each step has a timer of its own.
void Script::OnTimer(unsigned int id)
{
    KillTimer(id);
    SetTimer(id + 1, m_steps.empty() && m_input >= 0 ? PATIENCE : PERIOD);
    if (!m_busy && timeGetTick() >= m_waitUntil && m_rest-- <= 0) {
        m_rest = REST;
        GoOn();
    }
}

void Script::GoOn()
{
    if (m_steps.empty() && m_input >= 0)
        Read();
    if (m_steps.empty() && m_input >= 0 && m_frame.HasPeer())
        return;
    if (m_steps.empty() || !m_frame.HasPeer()) {
        // What a dialog still waits for is cancelled; the rest of its command runs before the end.
        if (!GetWindowSystem().AnswerQuestion(L"cancel"))
            GetWindowSystem().Quit(0);
        return;
    }
    const Step step = m_steps.front();
    m_steps.pop_front();
    Run(step);
}

void Script::Run(const Step& step)
{
    using Handler = std::string (Script::*)(const Words&);
    static constexpr struct {
        const char* name;
        Handler handler;
        bool alone;    ///< no other step runs inside of it
    } handlers[] = {
        {"open", &Script::Open, true},    {"mouse", &Script::Mouse, false}, {"key", &Script::Key, false},
        {"wait", &Script::Wait, true},    {"size", &Script::Resize, true},  {"window", &Script::Picture, true},
        {"view", &Script::Picture, true}, {"query", &Script::Query, true},  {"answer", &Script::Answer, false},
    };
    const auto found = std::find_if(std::begin(handlers), std::end(handlers), [&](const auto& row) { return step.words[0] == row.name; });
    const bool known = found != std::end(handlers);
    m_busy = known && found->alone;
    const std::string trouble = known ? (this->*found->handler)(step.words) : Command(step.words);
    m_busy = false;
    if (trouble.empty())
        return;
    std::fprintf(stderr, "zelview: line %d: %s\n", step.line, trouble.c_str());
    m_failed = true;
    m_steps.clear();
    m_input = -1;    // what another program would say next isn't heard any more
}

std::string Script::Open(const Words& words)
{
    if (words.size() != 2)
        return "open FILE";
    const Text path = fileMakeAbsolutePath(fileAddSlash(fileGetCurrentDirectory()), Utf8ToWide(words[1]));
    return m_frame.OpenFile(path, OPEN_REPLACE) ? "" : words[1] + ": can't be opened";
}

std::string Script::Mouse(const Words& words)
{
    static const std::string usage =
        "mouse press|move|release|double X Y [left|right|middle] [ctrl] [shift] [alt], mouse wheel X Y NOTCHES";
    C3DView* const view = m_frame.Get3DView();
    if (words.size() < 4 || !view)
        return usage;
    const std::string action = Lower(words[1]);
    const std::optional<int> x = ToNumber(words[2]), y = ToNumber(words[3]);
    if (!x || !y)
        return usage;
    const CPoint point{*x, *y};
    std::size_t next = 4;
    MouseButton button = MOUSE_LEFT;
    int notches = 0;
    if (action == "wheel") {
        const std::optional<int> turned = words.size() > next ? ToNumber(words[next]) : std::nullopt;
        if (!turned)
            return usage;
        notches = *turned;
        next++;
    } else if (words.size() > next) {
        const std::string name = Lower(words[next]);
        if (name == "left" || name == "right" || name == "middle") {
            button = name == "left" ? MOUSE_LEFT : name == "right" ? MOUSE_RIGHT : MOUSE_MIDDLE;
            next++;
        }
    }
    const std::optional<unsigned int> modifiers = ToModifiers(words, next);
    if (!modifiers)
        return usage;
    const unsigned int bit = button == MOUSE_LEFT ? INPUT_LEFT : button == MOUSE_RIGHT ? INPUT_RIGHT : INPUT_MIDDLE;
    const auto send = [&](bool down, bool doubleClick) {
        m_buttons = down ? m_buttons | bit : m_buttons & ~bit;
        view->OnMouseButton(button, down, doubleClick, m_buttons | *modifiers, point);
    };
    if (action == "move")
        view->OnMouseMove(m_buttons | *modifiers, point);
    else if (action == "press" || action == "release")
        send(action == "press", false);
    else if (action == "double") {
        send(true, false);
        send(false, false);
        send(true, true);
        send(false, false);
    } else if (action == "wheel")
        view->OnMouseWheel(m_buttons | *modifiers, static_cast<short>(notches * 120), point);
    else
        return usage;
    return "";
}

std::string Script::Key(const Words& words)
{
    std::string name;
    for (std::size_t i = 1; i < words.size(); i++)
        name += (i > 1 ? " " : "") + words[i];
    unsigned int key = 0, state = 0;
    if (!FindKey(name, key, state))
        return "no key has the name \"" + name + "\"";
    GetWindowSystem().SendKey(key, state);
    return "";
}

/// Until everything that was asked for is on the screen.
void Script::Settle()
{
    constexpr int ROUNDS = 4;    // a paint may ask for another one
    for (int i = 0; i < ROUNDS; i++)
        GetWindowSystem().PumpEvents();
    m_frame.OnIdle();
    GetWindowSystem().PumpEvents();
}

std::string Script::Wait(const Words& words)
{
    if (words.size() == 2 && words[1] == "idle") {
        Settle();
        return "";
    }
    const std::optional<int> milliseconds = words.size() == 2 ? ToNumber(words[1]) : std::nullopt;
    if (!milliseconds || *milliseconds < 0)
        return "wait idle|MILLISECONDS";
    m_waitUntil = timeGetTick() + *milliseconds;
    return "";
}

std::string Script::Resize(const Words& words)
{
    const std::optional<int> width = words.size() == 3 ? ToNumber(words[1]) : std::nullopt;
    const std::optional<int> height = words.size() == 3 ? ToNumber(words[2]) : std::nullopt;
    if (!width || !height || *width < 1 || *height < 1)
        return "size WIDTH HEIGHT";
    m_frame.GetFramePeer()->SetPlacement({{0, 0, *width, *height}, false});
    Settle();
    return "";
}

std::string Script::Picture(const Words& words)
{
    if (words.size() != 2)
        return words[0] + " PICTURE";
    Settle();
    CWnd* const window = words[0] == "view" ? static_cast<CWnd*>(m_frame.Get3DView()) : &m_frame;
    const std::unique_ptr<Bitmap, void (*)(Bitmap*)> picture(GetWindowSystem().GrabWindow(window), &Bitmap::DeleteBitmap);
    if (!picture)
        return "the picture can't be had";
    C2DIo io(CFileNameSpec(Utf8ToWide(words[1])), FILEIO_SILENT, nullptr);
    if (io.Save(picture.get()) == IORESULT_OK)
        return "";
    return words[1] + ": " + WideToUtf8(io.GetResultText());
}

std::string Script::Query(const Words& words)
{
    std::string answer;
    if (words.size() != 2 || !AnswerQuery(m_frame, words[1], answer))
        return "query " + GetQueryNames();
    std::printf("%s\n", answer.c_str());
    std::fflush(stdout);
    return "";
}

std::string Script::Answer(const Words& words)
{
    std::string text;
    for (std::size_t i = 1; i < words.size(); i++)
        text += (i > 1 ? " " : "") + words[i];
    return GetWindowSystem().AnswerQuestion(Utf8ToWide(text)) ? "" : "no open question takes the answer \"" + text + "\"";
}

std::string Script::Command(const Words& words)
{
    CCommandMgr& manager = m_frame.GetCommandMgr();
    CCustomData parameters;
    std::size_t named = words.size();
    while (named > 1 && AddParameter(parameters, words[named - 1]))
        named--;
    std::string name;
    for (std::size_t i = 0; i < named; i++)
        name += (i > 0 ? " " : "") + words[i];
    CZelCommand* command = name.size() == 4 ? manager.GetCommandById(ToFourCC(name)) : nullptr;
    if (!command) {
        const auto& all = manager.GetCommands();
        const auto found = std::find_if(all.begin(), all.end(), [&](CZelCommand* candidate) {
            return PlainName(WideToUtf8(candidate->GetName())) == PlainName(name);
        });
        command = found != all.end() ? *found : nullptr;
    }
    if (!command)
        return "there is no step and no command \"" + name + "\"";
    if (named == words.size()) {
        m_frame.RunCommand(command);
        return "";
    }
    CCustomData former;
    command->GetParameters(former);
    command->SetParameters(parameters);
    const CommandResult result = manager.StackCommand(command, STACK_APPLY, nullptr);
    command->SetParameters(former);
    return result == COMMAND_DONE ? "" : name + ": the command could not be applied";
}
