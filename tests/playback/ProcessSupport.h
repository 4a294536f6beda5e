#pragma once

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

/** True when `program` is found on the PATH. */
bool programAvailable(const std::string& program);

/** Runs a shell command line; returns its exit status (-1 when it did not exit normally). */
int runShell(const std::string& commandLine);

/** The whole content of a text file; empty when unreadable. */
std::string readText(const std::string& path);

/**
 * A child process started from an argument list, its output going to a file. Destroying it ends
 * the process (SIGTERM, then SIGKILL) so a failing test never leaves one behind.
 */
class ChildProcess
{
public:
    ChildProcess(const std::vector<std::string>& arguments, const std::string& outputFile,
                 const std::string& errorFile = "/dev/null");
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const { return m_pid > 0; }
    void signal(int number);
    /** Waits up to `limitMs` for the exit; its status, or -1 when still running or killed. */
    int waitForExit(int limitMs);
    bool running();

private:
    pid_t m_pid = -1;
    bool m_exited = false;
    int m_status = -1;
};

/**
 * A private JACK server with the dummy backend, named `baseName` plus a number, exported to every
 * child through JACK_DEFAULT_SERVER; stopped by the destructor.
 */
class DummyJackServer
{
public:
    DummyJackServer(const std::string& baseName, int sampleRate, int period);
    ~DummyJackServer();

    bool isRunning() const { return m_running; }
    const std::string& name() const { return m_name; }
    /** Shuts the server down now, with its clients still connected. */
    void stop();
    /** Waits (bounded) until a port of that full name exists. */
    bool waitForPort(const std::string& port, int limitMs);

private:
    std::string m_name;
    std::unique_ptr<ChildProcess> m_process;
    bool m_running = false;
};
