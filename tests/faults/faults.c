/* libherbora_faults.so, to be preloaded: counts the calls that change files below one folder and, at
 * the call asked for, kills the process or makes the call fail.
 *
 *   HERBORA_FAULTS_FOLDER   the folder, absolute and without symbolic links
 *   HERBORA_FAULTS_AT       the call to strike, from 1; 0 or absent: only count
 *   HERBORA_FAULTS_MODE     kill      the process dies before the call
 *                           torn      the same, but a write is half done first
 *                           eio-once  the call fails with an I/O error, later ones work
 *                           eio       from that call on every one fails with an I/O error
 *                           enospc    from that call on the disk is full: what needs room fails,
 *                                     removing, truncating and flushing work
 *                           short     a write is half done and says so, later ones work
 *   HERBORA_FAULTS_JOURNAL  a file that receives one line for each call, "number name path", with
 *                           " !mode" behind the struck ones; it outlives the process
 *
 * The calls go to the kernel directly, so nothing here depends on the order of libraries. Calls
 * that the C library makes inside itself (stdio, mkstemp) are not seen: the program uses none.
 */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/fs.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

enum Mode { MODE_COUNT, MODE_KILL, MODE_TORN, MODE_EIO_ONCE, MODE_EIO, MODE_ENOSPC, MODE_SHORT };
/* What a call is: a write, something else that needs room on the disk, or neither. */
enum Kind { KIND_WRITE, KIND_ROOM, KIND_OTHER };
enum Verdict { PASS, FAIL, HALF, HALF_AND_DIE };

static const char* const mode_names[] = {"count", "kill", "torn", "eio-once", "eio", "enospc", "short"};

static char folder[PATH_MAX];
static size_t folder_length;
static long strike_at;
static enum Mode mode;
static int journal = -1;
static atomic_long calls;
static atomic_bool broken;
static atomic_bool ready;

__attribute__((constructor)) static void start(void)
{
    if (atomic_exchange(&ready, 1)) {
        return;
    }
    const char* value = getenv("HERBORA_FAULTS_FOLDER");
    if (!value || value[0] != '/' || strlen(value) >= sizeof folder) {
        return;
    }
    strcpy(folder, value);
    folder_length = strlen(folder);
    value = getenv("HERBORA_FAULTS_AT");
    strike_at = value ? atol(value) : 0;
    value = getenv("HERBORA_FAULTS_MODE");
    for (int i = MODE_COUNT; value && i <= MODE_SHORT; ++i) {
        if (strcmp(value, mode_names[i]) == 0) {
            mode = (enum Mode)i;
        }
    }
    value = getenv("HERBORA_FAULTS_JOURNAL");
    if (value) {
        journal = (int)syscall(SYS_openat, AT_FDCWD, value, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
}

static int below(const char* path)
{
    return strncmp(path, folder, folder_length) == 0 &&
           (path[folder_length] == '/' || path[folder_length] == '\0');
}

static const char* path_of_fd(int fd, char* room)
{
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link, room, PATH_MAX - 1);
    room[length > 0 ? length : 0] = '\0';
    return room;
}

static const char* absolute(int at, const char* path, char* room)
{
    char base[PATH_MAX];
    if (path[0] == '/') {
        snprintf(room, PATH_MAX, "%s", path);
        return room;
    }
    if (at == AT_FDCWD) {
        const long length = syscall(SYS_readlinkat, AT_FDCWD, "/proc/self/cwd", base, PATH_MAX - 1);
        base[length > 0 ? length : 0] = '\0';
    } else {
        path_of_fd(at, base);
    }
    if (strlen(base) + strlen(path) + 2 > PATH_MAX) {
        room[0] = '\0';
        return room;
    }
    strcpy(room, base);
    strcat(room, "/");
    return strcat(room, path);
}

static void note(long number, const char* name, const char* path, int struck)
{
    char line[PATH_MAX + 96];
    const int length = snprintf(line, sizeof line, "%ld %s %s%s%s\n", number, name, path, struck ? " !" : "",
                                struck ? mode_names[mode] : "");
    if (journal >= 0 && length > 0) {
        syscall(SYS_write, journal, line, (size_t)length);
    }
}

static void die(void)
{
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    for (;;) {
        pause();
    }
}

static int strikes(long number, enum Kind kind)
{
    if (strike_at <= 0 || mode == MODE_COUNT) {
        return 0;
    }
    if (number == strike_at) {
        atomic_store(&broken, 1);
    }
    switch (mode) {
    case MODE_EIO:
        return atomic_load(&broken);
    case MODE_ENOSPC:
        return atomic_load(&broken) && kind != KIND_OTHER;
    case MODE_SHORT:
        return number == strike_at && kind == KIND_WRITE;
    default:
        return number == strike_at;
    }
}

/* Decides what happens to a call on `path`, which the caller found to be below the folder. */
static enum Verdict judge(const char* name, const char* path, enum Kind kind)
{
    const long number = atomic_fetch_add(&calls, 1) + 1;
    const int struck = strikes(number, kind);
    note(number, name, path, struck);
    if (!struck) {
        return PASS;
    }
    switch (mode) {
    case MODE_KILL:
        die();
        return FAIL;
    case MODE_TORN:
        if (kind == KIND_WRITE) {
            return HALF_AND_DIE;
        }
        die();
        return FAIL;
    case MODE_SHORT:
        return HALF;
    case MODE_ENOSPC:
        errno = ENOSPC;
        return FAIL;
    default:
        errno = EIO;
        return FAIL;
    }
}

static enum Verdict judge_fd(const char* name, int fd, enum Kind kind)
{
    char room[PATH_MAX];
    start();
    return folder_length && below(path_of_fd(fd, room)) ? judge(name, room, kind) : PASS;
}

static enum Verdict judge_path(const char* name, int at, const char* path, enum Kind kind)
{
    char room[PATH_MAX];
    start();
    return folder_length && path && below(absolute(at, path, room)) ? judge(name, room, kind) : PASS;
}

static enum Verdict judge_two(const char* name, int at1, const char* path1, int at2, const char* path2,
                              enum Kind kind)
{
    char room1[PATH_MAX];
    char room2[PATH_MAX];
    start();
    if (!folder_length || !path1 || !path2) {
        return PASS;
    }
    absolute(at1, path1, room1);
    absolute(at2, path2, room2);
    return below(room2) ? judge(name, room2, kind) : below(room1) ? judge(name, room1, kind) : PASS;
}

/* --- Opening ------------------------------------------------------------------------------ */

static int do_open(const char* name, int at, const char* path, int flags, mode_t permissions)
{
    const int changes = (flags & (O_CREAT | O_TRUNC)) || (flags & O_TMPFILE) == O_TMPFILE;
    if (changes && judge_path(name, at, path, KIND_ROOM) != PASS) {
        return -1;
    }
    return (int)syscall(SYS_openat, at, path, flags, permissions);
}

#define PERMISSIONS(flags, last)                                      \
    mode_t permissions = 0;                                           \
    if (((flags) & O_CREAT) || ((flags) & O_TMPFILE) == O_TMPFILE) {  \
        va_list list;                                                 \
        va_start(list, last);                                         \
        permissions = va_arg(list, mode_t);                           \
        va_end(list);                                                 \
    }

int open(const char* path, int flags, ...)
{
    PERMISSIONS(flags, flags)
    return do_open("open", AT_FDCWD, path, flags, permissions);
}

int open64(const char* path, int flags, ...)
{
    PERMISSIONS(flags, flags)
    return do_open("open", AT_FDCWD, path, flags | O_LARGEFILE, permissions);
}

int openat(int at, const char* path, int flags, ...)
{
    PERMISSIONS(flags, flags)
    return do_open("openat", at, path, flags, permissions);
}

int openat64(int at, const char* path, int flags, ...)
{
    PERMISSIONS(flags, flags)
    return do_open("openat", at, path, flags | O_LARGEFILE, permissions);
}

int creat(const char* path, mode_t permissions)
{
    return do_open("creat", AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, permissions);
}

int creat64(const char* path, mode_t permissions) { return creat(path, permissions); }

/* --- Writing ------------------------------------------------------------------------------ */

/* `done` holds the call done in full; `half` the same with half the bytes. A single byte has
 * no half: it is written whole, as a short write of nothing would mean a full disk. */
#define WRITE_BODY(name, fd, done, half)                    \
    switch (judge_fd(name, fd, KIND_WRITE)) {               \
    case FAIL:                                              \
        return -1;                                          \
    case HALF:                                              \
        return (half);                                      \
    case HALF_AND_DIE:                                      \
        (void)(half);                                       \
        die();                                              \
        return -1;                                          \
    default:                                                \
        return (done);                                      \
    }

#define HALF_OF(size) ((size) > 1 ? (size) / 2 : (size))

ssize_t write(int fd, const void* bytes, size_t size)
{
    WRITE_BODY("write", fd, syscall(SYS_write, fd, bytes, size), syscall(SYS_write, fd, bytes, HALF_OF(size)))
}

ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t offset)
{
    WRITE_BODY("pwrite", fd, syscall(SYS_pwrite64, fd, bytes, size, offset),
               syscall(SYS_pwrite64, fd, bytes, HALF_OF(size), offset))
}

ssize_t pwrite(int fd, const void* bytes, size_t size, off_t offset) { return pwrite64(fd, bytes, size, offset); }

ssize_t writev(int fd, const struct iovec* pieces, int count)
{
    WRITE_BODY("writev", fd, syscall(SYS_writev, fd, pieces, count),
               syscall(SYS_write, fd, pieces[0].iov_base, HALF_OF(pieces[0].iov_len)))
}

ssize_t pwritev64(int fd, const struct iovec* pieces, int count, off64_t offset)
{
    WRITE_BODY("pwritev", fd, syscall(SYS_pwritev, fd, pieces, count, offset, 0L),
               syscall(SYS_pwrite64, fd, pieces[0].iov_base, HALF_OF(pieces[0].iov_len), offset))
}

ssize_t pwritev(int fd, const struct iovec* pieces, int count, off_t offset)
{
    return pwritev64(fd, pieces, count, offset);
}

ssize_t sendfile64(int to, int from, off64_t* offset, size_t size)
{
    WRITE_BODY("sendfile", to, syscall(SYS_sendfile, to, from, offset, size),
               syscall(SYS_sendfile, to, from, offset, HALF_OF(size)))
}

ssize_t sendfile(int to, int from, off_t* offset, size_t size) { return sendfile64(to, from, offset, size); }

ssize_t copy_file_range(int from, off64_t* at, int to, off64_t* offset, size_t size, unsigned flags)
{
    WRITE_BODY("copy_file_range", to, syscall(SYS_copy_file_range, from, at, to, offset, size, flags),
               syscall(SYS_copy_file_range, from, at, to, offset, HALF_OF(size), flags))
}

int ioctl(int fd, unsigned long request, ...)
{
    va_list list;
    va_start(list, request);
    void* argument = va_arg(list, void*);
    va_end(list);
    if ((request == FICLONE || request == FICLONERANGE) && judge_fd("clone", fd, KIND_ROOM) != PASS) {
        return -1;
    }
    return (int)syscall(SYS_ioctl, fd, request, argument);
}

/* --- The rest: one line each ---------------------------------------------------------------- */

#define ON_FD(kind, name, fd, call) \
    return judge_fd(name, fd, kind) == PASS ? (int)(call) : -1;
#define ON_PATH(kind, name, at, path, call) \
    return judge_path(name, at, path, kind) == PASS ? (int)(call) : -1;

int fsync(int fd) { ON_FD(KIND_OTHER, "fsync", fd, syscall(SYS_fsync, fd)) }
int fdatasync(int fd) { ON_FD(KIND_OTHER, "fdatasync", fd, syscall(SYS_fdatasync, fd)) }
int ftruncate64(int fd, off64_t size) { ON_FD(KIND_OTHER, "ftruncate", fd, syscall(SYS_ftruncate, fd, size)) }
int ftruncate(int fd, off_t size) { return ftruncate64(fd, size); }
int truncate64(const char* path, off64_t size)
{
    ON_PATH(KIND_OTHER, "truncate", AT_FDCWD, path, syscall(SYS_truncate, path, size))
}
int truncate(const char* path, off_t size) { return truncate64(path, size); }
int fallocate64(int fd, int how, off64_t offset, off64_t size)
{
    ON_FD(KIND_ROOM, "fallocate", fd, syscall(SYS_fallocate, fd, how, offset, size))
}
int fallocate(int fd, int how, off_t offset, off_t size) { return fallocate64(fd, how, offset, size); }
int posix_fallocate64(int fd, off64_t offset, off64_t size)
{
    const int before = errno;
    const int error = fallocate64(fd, 0, offset, size) == 0 ? 0 : errno;
    errno = before;
    return error;
}
int posix_fallocate(int fd, off_t offset, off_t size) { return posix_fallocate64(fd, offset, size); }
int fchmod(int fd, mode_t permissions)
{
    ON_FD(KIND_OTHER, "fchmod", fd, syscall(SYS_fchmod, fd, permissions))
}
int chmod(const char* path, mode_t permissions)
{
    ON_PATH(KIND_OTHER, "chmod", AT_FDCWD, path, syscall(SYS_fchmodat, AT_FDCWD, path, permissions))
}

int renameat2(int at1, const char* path1, int at2, const char* path2, unsigned flags)
{
    return judge_two("rename", at1, path1, at2, path2, KIND_ROOM) == PASS
               ? (int)syscall(SYS_renameat2, at1, path1, at2, path2, flags)
               : -1;
}
int renameat(int at1, const char* path1, int at2, const char* path2)
{
    return renameat2(at1, path1, at2, path2, 0);
}
int rename(const char* path1, const char* path2) { return renameat2(AT_FDCWD, path1, AT_FDCWD, path2, 0); }

int linkat(int at1, const char* path1, int at2, const char* path2, int flags)
{
    ON_PATH(KIND_ROOM, "link", at2, path2, syscall(SYS_linkat, at1, path1, at2, path2, flags))
}
int link(const char* path1, const char* path2) { return linkat(AT_FDCWD, path1, AT_FDCWD, path2, 0); }
int symlinkat(const char* target, int at, const char* path)
{
    ON_PATH(KIND_ROOM, "symlink", at, path, syscall(SYS_symlinkat, target, at, path))
}
int symlink(const char* target, const char* path) { return symlinkat(target, AT_FDCWD, path); }

int unlinkat(int at, const char* path, int flags)
{
    ON_PATH(KIND_OTHER, flags & AT_REMOVEDIR ? "rmdir" : "unlink", at, path,
            syscall(SYS_unlinkat, at, path, flags))
}
int unlink(const char* path) { return unlinkat(AT_FDCWD, path, 0); }
int rmdir(const char* path) { return unlinkat(AT_FDCWD, path, AT_REMOVEDIR); }
int remove(const char* path)
{
    struct stat information;
    const int folder_itself = lstat(path, &information) == 0 && S_ISDIR(information.st_mode);
    return unlinkat(AT_FDCWD, path, folder_itself ? AT_REMOVEDIR : 0);
}
int mkdirat(int at, const char* path, mode_t permissions)
{
    ON_PATH(KIND_ROOM, "mkdir", at, path, syscall(SYS_mkdirat, at, path, permissions))
}
int mkdir(const char* path, mode_t permissions) { return mkdirat(AT_FDCWD, path, permissions); }
