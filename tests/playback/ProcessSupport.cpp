#include "ProcessSupport.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string quoted(const std::string& text)
{
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

} // namespace

bool programAvailable(const std::string& program)
{
    return runShell("command -v " + quoted(program) + " >/dev/null 2>&1") == 0;
}

int runShell(const std::string& commandLine)
{
    const int status = std::system(commandLine.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::string& outputFile,
                           const std::string& errorFile)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        const int out = open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int err = open(errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out >= 0)
            dup2(out, STDOUT_FILENO);
        if (err >= 0)
            dup2(err, STDERR_FILENO);
        execvp(argv[0], argv.data());
        _exit(127);
    }
}

ChildProcess::~ChildProcess()
{
    if (!started() || m_exited)
        return;
    signal(SIGTERM);
    if (waitForExit(3000) == -1 && !m_exited) {
        signal(SIGKILL);
        waitForExit(3000);
    }
}

void ChildProcess::signal(int number)
{
    if (started() && !m_exited)
        ::kill(m_pid, number);
}

bool ChildProcess::running()
{
    return started() && !m_exited && waitForExit(0) == -1 && !m_exited;
}

int ChildProcess::waitForExit(int limitMs)
{
    if (!started())
        return -1;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
    while (!m_exited) {
        int status = 0;
        const pid_t result = waitpid(m_pid, &status, WNOHANG);
        if (result == m_pid) {
            m_exited = true;
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            break;
        }
        if (std::chrono::steady_clock::now() >= end)
            return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return m_status;
}

DummyJackServer::DummyJackServer(const std::string& baseName, int sampleRate, int period)
{
    setenv("JACK_NO_AUDIO_RESERVATION", "1", 1);
    // JACK keeps a small registry of server names and reclaims an entry only for the same name,
    // so a few fixed names (rather than one per run) never fill it up; the next name is tried
    // when another test run holds one.
    // Real-time scheduling first where the system allows it: on a loaded machine a server
    // without it misses cycles, and JACK drops the MIDI events of a missed cycle.
    for (int attempt = 0; attempt < 8 && !m_running; ++attempt) {
        m_name = baseName + "-" + std::to_string(attempt / 2);
        setenv("JACK_DEFAULT_SERVER", m_name.c_str(), 1);
        m_process = std::make_unique<ChildProcess>(
            std::vector<std::string>{"jackd", attempt % 2 == 0 ? "--realtime" : "--no-realtime",
                                     "-n", m_name, "-d", "dummy", "-r", std::to_string(sampleRate),
                                     "-p", std::to_string(period)},
            "/dev/null");
        for (int i = 0; i < 100 && !m_running && m_process->running(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            m_running = runShell("jack_wait -c -s " + quoted(m_name) +
                                 " 2>/dev/null | grep -qx running") == 0;
        }
    }
}

DummyJackServer::~DummyJackServer()
{
    m_process.reset();
    unsetenv("JACK_DEFAULT_SERVER");
}

void DummyJackServer::stop()
{
    m_process->signal(SIGTERM);
    m_process->waitForExit(3000);
    m_running = false;
}

bool DummyJackServer::waitForPort(const std::string& port, int limitMs)
{
    for (int waited = 0; waited < limitMs; waited += 50) {
        if (runShell("jack_lsp 2>/dev/null | grep -qxF " + quoted(port)) == 0)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}
