#include "extract/sandbox.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

#include <cerrno>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kelva {
namespace {

/// Tables of character codes lie there; nothing of a user does.
const char systemData[] = "/usr/share";

/// False when the kernel has Landlock and it fails.
bool restrictFiles()
{
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return true;
    landlock_ruleset_attr rules = {};
    rules.handled_access_fs = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
    const int ruleset = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0));
    if (ruleset < 0)
        return false;
    landlock_path_beneath_attr readable = {};
    readable.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
    readable.parent_fd = ::open(systemData, O_PATH | O_CLOEXEC);
    bool done = true;
    if (readable.parent_fd >= 0) {
        done = ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &readable, 0) == 0;
        ::close(readable.parent_fd);
    }
    done = done && ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    ::close(ruleset);
    return done;
}

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#else
#error "The calls of this processor's system are not known to the sandbox."
#endif

/// Enough to read, compute and answer. Everything else fails as if it were forbidden to the user.
const std::uint32_t allowedCalls[] = {
    SYS_read,
    SYS_write,
    SYS_readv,
    SYS_writev,
    SYS_pread64,
    SYS_close,
    SYS_fstat,
    SYS_newfstatat,
    SYS_statx,
    SYS_lseek,
    SYS_recvmsg,
    SYS_sendmsg,
    SYS_sendto,
    SYS_ppoll,
    SYS_fcntl,
    SYS_mmap,
    SYS_munmap,
    SYS_mprotect,
    SYS_mremap,
    SYS_madvise,
    SYS_brk,
    SYS_futex,
    SYS_getrandom,
    SYS_sched_yield,
    SYS_clock_gettime,
    SYS_clock_getres,
    SYS_gettimeofday,
    SYS_getpid,
    SYS_gettid,
    SYS_getrusage,
    SYS_rt_sigaction,
    SYS_rt_sigprocmask,
    SYS_rt_sigreturn,
    SYS_sigaltstack,
    SYS_tgkill,
    SYS_setitimer,
    SYS_getcwd,
    SYS_faccessat,
    SYS_readlinkat,
    SYS_getdents64,
    SYS_exit,
    SYS_exit_group,
    SYS_restart_syscall,
    SYS_clock_nanosleep,
    SYS_uname,
#if defined(__x86_64__)
    SYS_alarm,
    SYS_poll,
    SYS_stat,
    SYS_access,
    SYS_readlink,
#endif
#ifdef __SANITIZE_ADDRESS__
    SYS_pipe2, // by which the sanitizer asks whether memory can be read
#endif
};

constexpr std::uint32_t mayNotOpen = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC | (O_TMPFILE & ~O_DIRECTORY);

sock_filter load(std::size_t offset)
{
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

bool restrictCalls()
{
    constexpr std::size_t calls = std::size(allowedCalls);
    constexpr std::size_t longest = 12 + 2 * calls;
    constexpr std::uint32_t refuse = SECCOMP_RET_ERRNO | EPERM;
    sock_filter program[longest];
    std::size_t size = 0;
    const auto add = [&](sock_filter step) { program[size++] = step; };
    const auto result = [&](std::uint32_t action) { add(BPF_STMT(BPF_RET | BPF_K, action)); };
    add(load(offsetof(seccomp_data, arch)));
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, architecture, 1, 0));
    result(SECCOMP_RET_KILL_PROCESS);
    add(load(offsetof(seccomp_data, nr)));
    for (const std::uint32_t call : allowedCalls) {
        add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        result(SECCOMP_RET_ALLOW);
    }
    add(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 1, 0));
    result(refuse);
    // The lower half of the third argument, the flags.
    add(load(offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t)));
    add(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, mayNotOpen, 0, 1));
    result(refuse);
    result(SECCOMP_RET_ALLOW);
    const sock_fprog filter{static_cast<unsigned short>(size), program};
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace

bool enterSandbox()
{
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && restrictFiles() && restrictCalls();
}

} // namespace kelva
