#include "machine/media/device/disk_server.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "machine/media/device/image_access.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

// To this process, while there is one that starts servers for it.
Descriptor starter;

[[noreturn]] void Fail(const std::string& path) {
    throw ImageError(path +
                     ": the program that opens virtual disks cannot be started: " + std::strerror(errno));
}

// --- a connection that nobody else can have: its name exists only in a folder of this user, and is gone
// before the server is there ---

struct Connection {
    Descriptor ours;
    Descriptor listening;
};

bool Listen(Connection& connection, const std::string& folder) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string name = folder + "/disk";
    if (name.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    name.copy(address.sun_path, name.size());
    const auto* const general = reinterpret_cast<const sockaddr*>(&address);
    connection.listening = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    connection.ours = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const bool isDone = bind(connection.listening.Number(), general, sizeof address) == 0 &&
                        listen(connection.listening.Number(), 1) == 0 &&
                        connect(connection.ours.Number(), general, sizeof address) == 0;
    const int error = errno;
    unlink(name.c_str());
    errno = error;
    return isDone;
}

Connection NewConnection(const std::string& path) {
    std::error_code missing;
    std::string folder = (fs::temp_directory_path(missing) / "kestova-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) Fail(path);
    Connection connection;
    const bool isDone = Listen(connection, folder);
    const int error = errno;
    rmdir(folder.c_str());
    errno = error;
    if (!isDone) Fail(path);
    return connection;
}

// --- the program ---

std::vector<std::string> Words(const ServedDisk& disk) {
    std::vector<std::string> words = {
        "qemu-nbd",         "--format=" + disk.format, "--cache=writeback", "--aio=threads",
        "--discard=ignore", "--detect-zeroes=off",     "--export-name=",    "--shared=1"};
    if (!disk.forWriting) words.emplace_back("--read-only");
    // With a slash in front, no path is an option or the address of another computer.
    words.push_back(fs::absolute(disk.path).string());
    return words;
}

// The sockets from this number on are those of a program that is started with LISTEN_FDS.
constexpr int firstPassed = 3;

[[noreturn]] void Become(const std::vector<std::string>& words, int listening, int said) {
    const int null = open("/dev/null", O_RDWR);
    std::vector<char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    if (null >= 0 && dup2(null, STDIN_FILENO) >= 0 && dup2(null, STDOUT_FILENO) >= 0 &&
        dup2(said, STDERR_FILENO) >= 0 && fcntl(listening, F_SETFD, 0) == 0 &&
        dup2(listening, firstPassed) >= 0 && close_range(firstPassed + 1, ~0U, 0) == 0 &&
        setenv("LISTEN_FDS", "1", 1) == 0 && setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1) == 0) {
        execvp(pointers.front(), pointers.data());
    }
    if (errno == ENOENT) {
        dprintf(STDERR_FILENO, "needs qemu-nbd (package qemu-utils), which is not installed");
    } else {
        dprintf(STDERR_FILENO, "qemu-nbd cannot be started: %s", std::strerror(errno));
    }
    _exit(EXIT_FAILURE);
}

// Returns what shows its end. Nobody waits for the child: the end of the starter leaves it to the system.
Descriptor StartProgram(const ServedDisk& disk, int listening, int said) {
    const std::vector<std::string> words = Words(disk);
    const pid_t child = fork();
    if (child == 0) Become(words, listening, said);
    Descriptor process(child < 0 ? -1 : static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    if (!process) Fail(disk.path);
    return process;
}

DiskServer StartServer(const ServedDisk& disk) {
    Connection connection = NewConnection(disk.path);
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) Fail(disk.path);
    Descriptor said(ends[0]);
    const Descriptor saying(ends[1]);
    Descriptor process = StartProgram(disk, connection.listening.Number(), saying.Number());
    return {std::move(connection.ours), std::move(said), std::move(process)};
}

// --- the process that starts them. A request is a message "w" or "r", format, NUL, path; the answer is one
// with the descriptors, or with what is wrong. The message "d" is the last ---

constexpr size_t longestMessage = 16384;
constexpr std::string_view allAreOpen = "d";
constexpr size_t passedDescriptors = 3;

struct Message {
    std::string text;
    std::vector<Descriptor> passed;
};

bool Send(int channel, std::string_view text, const std::vector<int>& passed) {
    iovec part = {const_cast<char*>(text.data()), text.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(passedDescriptors * sizeof(int))> control = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (!passed.empty()) {
        message.msg_control = control.data();
        message.msg_controllen = CMSG_SPACE(passed.size() * sizeof(int));
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(passed.size() * sizeof(int));
        std::memcpy(CMSG_DATA(header), passed.data(), passed.size() * sizeof(int));
    }
    return sendmsg(channel, &message, MSG_NOSIGNAL) >= 0;
}

// Without text at the end of the channel.
Message Receive(int channel) {
    Message received = {std::string(longestMessage, '\0'), {}};
    iovec part = {received.text.data(), received.text.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(passedDescriptors * sizeof(int))> control = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t length = 0;
    do {
        length = recvmsg(channel, &message, MSG_CMSG_CLOEXEC);
    } while (length < 0 && errno == EINTR);
    received.text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (length <= 0 || header == nullptr || header->cmsg_type != SCM_RIGHTS) return received;
    const size_t count = (header->cmsg_len - CMSG_LEN(0)) / sizeof(int);
    for (size_t index = 0; index < count; ++index) {
        int number = -1;
        std::memcpy(&number, CMSG_DATA(header) + index * sizeof number, sizeof number);
        received.passed.emplace_back(number);
    }
    return received;
}

ServedDisk DiskOf(const std::string& request) {
    const size_t end = request.find('\0');
    return {request.substr(end + 1), request.substr(1, end - 1), request.front() == 'w'};
}

void Answer(int channel, const std::string& request) {
    try {
        const DiskServer server = StartServer(DiskOf(request));
        Send(channel, "s", {server.connection.Number(), server.said.Number(), server.process.Number()});
    } catch (const std::exception& error) {
        Send(channel, error.what(), {});
    }
}

// In a session of its own: a terminal's signals are for the program that asks. Its servers are in it, too.
// One whose disk is open ends in order when its connection does; until then it would not notice that the
// program was killed.
[[noreturn]] void AnswerAll(int channel) {
    setsid();
    for (;;) {
        const Message request = Receive(channel);
        if (request.text == allAreOpen) _exit(EXIT_SUCCESS);
        if (request.text.empty()) kill(0, SIGTERM);
        Answer(channel, request.text);
    }
}

}  // namespace

DiskServer StartDiskServer(const ServedDisk& disk) {
    if (!starter) KeepDiskServerStarter();
    const std::string request =
        (disk.forWriting ? "w" : "r") + disk.format + '\0' + fs::absolute(disk.path).string();
    errno = ENAMETOOLONG;
    if (request.size() > longestMessage || !Send(starter.Number(), request, {})) Fail(disk.path);
    Message answer = Receive(starter.Number());
    if (answer.passed.size() != passedDescriptors)
        throw ImageError(answer.text.empty() ? disk.path + ": no answer" : answer.text);
    return {std::move(answer.passed[0]), std::move(answer.passed[1]), std::move(answer.passed[2])};
}

void KeepDiskServerStarter() {
    std::array<int, 2> ends = {};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) Fail("images");
    Descriptor ours(ends[0]);
    const Descriptor theirs(ends[1]);
    const pid_t child = fork();
    if (child < 0) Fail("images");
    if (child == 0) {
        // A file of the program that stays open in it stays locked, too.
        if (dup2(theirs.Number(), firstPassed) < 0 || close_range(firstPassed + 1, ~0U, 0) != 0)
            _exit(EXIT_FAILURE);
        AnswerAll(firstPassed);
    }
    starter = std::move(ours);
}

void EndDiskServerStarter() {
    if (!starter) return;
    Send(starter.Number(), allAreOpen, {});
    starter = Descriptor();
}

}  // namespace machine
