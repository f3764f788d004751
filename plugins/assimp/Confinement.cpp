#include "Confinement.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Every way of writing to a file by its name, with no folder where it is allowed.
void RefuseWriting()
{
    const std::uint64_t rights = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
                                 LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                 LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                                 LANDLOCK_ACCESS_FS_MAKE_SYM;
    const auto rules = static_cast<int>(syscall(SYS_landlock_create_ruleset, &rights, sizeof rights, 0));
    if (rules < 0)
        return;
    syscall(SYS_landlock_restrict_self, rules, 0);
    close(rules);
}

#if defined(__x86_64__)
constexpr std::uint32_t ARCHITECTURE = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t ARCHITECTURE = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t ARCHITECTURE = 0;    // its calls are not known here
#endif

constexpr std::uint32_t REFUSED_CALLS[] = {
    SYS_socket,         SYS_socketpair,
    SYS_io_uring_setup,    // the network, also by the back door
    SYS_execve,         SYS_execveat,
    SYS_ptrace,         SYS_process_vm_writev,
    SYS_kill,           SYS_pidfd_send_signal,    // other programs and processes
    SYS_truncate,       SYS_fchmod,
    SYS_fchmodat,       SYS_fchown,
    SYS_fchownat,       SYS_utimensat,
    SYS_setxattr,       SYS_lsetxattr,    // what opens no file
    SYS_fsetxattr,      SYS_removexattr,
    SYS_lremovexattr,   SYS_fremovexattr,
#if defined(__x86_64__)    // calls that newer systems do without
    SYS_fork,           SYS_vfork,
    SYS_chmod,          SYS_chown,
    SYS_lchown,         SYS_utime,
    SYS_utimes,         SYS_futimesat,
#endif
};

/// Decides over the calls to the kernel.
class CallFilter {
public:
    CallFilter()
    {
        Load(offsetof(seccomp_data, arch));
        Add(BPF_JMP | BPF_JEQ | BPF_K, ARCHITECTURE, 1, 0);
        Add(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS);
        Load(offsetof(seccomp_data, nr));
#if defined(__x86_64__)
        constexpr std::uint32_t FIRST_X32_CALL = 0x40000000;    // the same calls under other numbers
        Add(BPF_JMP | BPF_JGE | BPF_K, FIRST_X32_CALL, 0, 1);
        Add(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM);
#endif
        for (const std::uint32_t call : REFUSED_CALLS)
            Refuse(call, EPERM);
        Refuse(SYS_clone3, ENOSYS);    // its flags can't be looked at; programs fall back to the older call
        Add(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 3);
        Load(offsetof(seccomp_data, args));    // the low half of the flags
        Add(BPF_JMP | BPF_JSET | BPF_K, CLONE_THREAD, 1, 0);
        Add(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM);
        Add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    }

    void Install()
    {
        const sock_fprog program{static_cast<unsigned short>(m_steps.size()), m_steps.data()};
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program);
    }

private:
    void Add(int code, std::uint32_t value, std::uint8_t ifTrue = 0, std::uint8_t ifFalse = 0)
    {
        m_steps.push_back({static_cast<std::uint16_t>(code), ifTrue, ifFalse, value});
    }
    void Load(std::size_t offset) { Add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)); }
    void Refuse(std::uint32_t call, std::uint32_t error)
    {
        Add(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1);
        Add(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error);
    }

    std::vector<sock_filter> m_steps;
};

}

void ConfineProcess()
{
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return;
    RefuseWriting();
    if (ARCHITECTURE != 0)
        CallFilter().Install();
}
