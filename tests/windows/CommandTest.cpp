#include <gtest/gtest.h>

#include <string>

#include "tools/FourCC.h"
#include "windows/CommandMgr.h"

namespace {

using Text = CXTString<wchar_t>;

// Writes down what happens to it.
class Recorded : public CZelCommand {
public:
    Recorded(unsigned int id, unsigned int type, std::string& log) : m_id(id), m_type(type), m_log(log) {}
    Text GetName() override { return L"command"; }
    CCommandID GetCommandID() override { return {1, 1, m_type, 2, m_id, 1}; }
    CommandResult OnOpenCommand(unsigned int&, void*) override { return Say("open", openResult); }
    CommandResult OnApplyCommand() override { return Say("apply", COMMAND_DONE); }
    CommandResult OnCloseCommand() override { return Say("close", COMMAND_DONE); }
    void OnGetFocus(int, CZelCommand*, CommandResult) override { Say("focus", COMMAND_DONE); }
    void OnLooseFocus(int, CZelCommand*) override { Say("blur", COMMAND_DONE); }
    int HasDialog() override { return dialog; }
    int OnOpenDialog() override { return Say("dialog", COMMAND_DONE), accept; }

    CommandResult openResult = COMMAND_DONE;
    bool dialog = false, accept = false;

private:
    CommandResult Say(const char* what, CommandResult result)
    {
        m_log += std::string(what) + " ";
        return result;
    }
    unsigned int m_id, m_type;
    std::string& m_log;
};

constexpr unsigned int SIMPLE = FourCC("SIMP"), INTERACTIVE = FourCC("INTE");

}

TEST(CommandMgr, RunsCommandsByTheirType)
{
    std::string log;
    CCommandMgr manager;
    Recorded simple(10, SIMPLE, log), view(11, INTERACTIVE, log), zoom(12, INTERACTIVE, log), twin(10, SIMPLE, log);
    ASSERT_TRUE(manager.AddCommand(&simple, nullptr) && manager.AddCommand(&view, nullptr) && manager.AddCommand(&zoom, nullptr));
    EXPECT_FALSE(manager.AddCommand(&twin, nullptr));
    EXPECT_FALSE(manager.AddCommand(nullptr, nullptr));
    const auto run = [&](unsigned int id, unsigned int mode) {
        log.clear();
        return manager.StackCommand(id, mode, nullptr);
    };
    EXPECT_EQ(run(99, 0), COMMAND_DECLINED);
    EXPECT_EQ(run(10, 2), COMMAND_DONE);
    EXPECT_EQ(log, "open apply close ");
    simple.dialog = true;
    EXPECT_EQ(run(10, 0), COMMAND_CANCELLED);
    EXPECT_EQ(log, "open dialog close ");
    simple.accept = true;
    EXPECT_EQ(run(10, 0), COMMAND_DONE);
    EXPECT_EQ(log, "open dialog apply close ");
    manager.SetScriptMode(1);    // only the dialog
    EXPECT_TRUE(simple.IsScripting());
    EXPECT_EQ(run(10, 0), COMMAND_DONE);
    EXPECT_EQ(log, "open dialog close ");
    manager.SetScriptMode(0);
    simple.SetState(COMMAND_ENABLED, false);
    EXPECT_EQ(run(10, 2), COMMAND_DECLINED);
    EXPECT_EQ(log, "");

    run(11, 2);
    EXPECT_EQ(log, "open focus ");    // it stays current instead of being applied
    EXPECT_EQ(run(11, 2), COMMAND_DONE);
    EXPECT_EQ(log, "");
    run(12, 2);
    EXPECT_EQ(log, "open blur close focus ");
    EXPECT_EQ(manager.GetCurrentCommand(), &zoom);
    manager.RemoveCommand(&zoom);
    EXPECT_EQ(manager.GetCurrentCommand(), nullptr);
    EXPECT_FALSE(zoom.IsScripting());
}
