#pragma once
// The peers of the streaming benches: qrx-sim as a child process streaming
// position reports, and the plain blocking reader whose cost per report is
// the baseline of the library's.

#include <json/reader.h>
#include <zlib.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <memory>
#include <string>
#include <thread>

namespace qrxbench {

inline double cpuSeconds(clockid_t clock)
{
    timespec ts{};
    clock_gettime(clock, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

// qrx-sim as a child process (count controllers from address), each
// streaming reportsPerSecond position reports; stopped with SIGTERM.
class SimProcess
{
public:
    SimProcess(const char *address, int reportsPerSecond, int count = 1)
    {
        int out[2];
        if (::pipe(out) != 0)
            return;
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::close(out[0]);
            const std::string rate = std::to_string(reportsPerSecond);
            const std::string controllers = std::to_string(count);
            ::execl(QRX_SIM_PATH, QRX_SIM_PATH, "--address", address, "--port", "6001", "--position-reports",
                    rate.c_str(), "--count", controllers.c_str(), static_cast<char *>(nullptr));
            ::_exit(127);
        }
        ::close(out[1]);
        // Ready once it says it listens (one line per controller).
        int lines = 0;
        char c = 0;
        while (lines < count && ::read(out[0], &c, 1) == 1) {
            if (c == '\n')
                ++lines;
        }
        m_ready = lines == count;
        ::close(out[0]);
    }
    ~SimProcess()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGTERM);
            ::waitpid(m_pid, nullptr, 0);
        }
    }
    bool ready() const { return m_ready; }

private:
    pid_t m_pid = -1;
    bool m_ready = false;
};

// The baseline: reads one controller's stream the plainest way, a blocking
// socket on a thread of its own, checking and parsing each frame.
class PlainReader
{
public:
    explicit PlainReader(const char *address)
    {
        m_fd = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(6001);
        inet_pton(AF_INET, address, &at.sin_addr);
        m_ok = ::connect(m_fd, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0;
        if (m_ok)
            m_thread = std::thread([this] { run(); });
    }
    ~PlainReader()
    {
        ::shutdown(m_fd, SHUT_RDWR);
        if (m_thread.joinable())
            m_thread.join();
        ::close(m_fd);
    }
    bool ok() const { return m_ok; }
    int reports() const { return m_reports.load(); }
    double cpu() const { return m_cpu.load(); }

private:
    void run()
    {
        std::string buffer;
        char chunk[65536];
        Json::CharReaderBuilder builder;
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        for (;;) {
            const ssize_t n = ::recv(m_fd, chunk, sizeof chunk, 0);
            if (n <= 0)
                break;
            buffer.append(chunk, size_t(n));
            size_t at = 0;
            while (buffer.size() - at >= 10) {
                const auto *p = reinterpret_cast<const unsigned char *>(buffer.data() + at);
                if (p[0] != 'N' || p[1] != 'f') {
                    ++at;
                    continue;
                }
                const size_t length = size_t(p[2]) << 8 | p[3];
                if (buffer.size() - at < length + 10)
                    break;
                const uLong crc = crc32(crc32(0L, Z_NULL, 0), p + 2, uInt(length + 4));
                const unsigned char *c = p + 6 + length;
                const uLong sent = uLong(c[0]) << 24 | uLong(c[1]) << 16 | uLong(c[2]) << 8 | c[3];
                const int command = p[4] << 8 | p[5];
                Json::Value value;
                if (crc == sent && command == 0x2F08
                    && reader->parse(reinterpret_cast<const char *>(p + 6),
                                     reinterpret_cast<const char *>(p + 6 + length), &value, nullptr)
                    && value["pos"].size() == 7)
                    m_reports.fetch_add(1);
                at += length + 10;
            }
            buffer.erase(0, at);
            m_cpu.store(cpuSeconds(CLOCK_THREAD_CPUTIME_ID));
        }
    }

    int m_fd = -1;
    bool m_ok = false;
    std::thread m_thread;
    std::atomic<int> m_reports{0};
    std::atomic<double> m_cpu{0.0};
};

} // namespace qrxbench
