#pragma once

#include "midi/CMIDIOutException.h"
#include "midi/MidiPortList.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/**
 * Ports that record what reaches them, for device, settings and player tests that must not
 * depend on the machine's MIDI systems. One shared log per list.
 */
struct FakePortLog
{
    std::mutex mutex;
    std::vector<std::vector<std::uint8_t>> messages;
    int opened = 0;
    int closed = 0;
    /** The port throws once this many messages went through (-1: never). */
    int failAfter = -1;
    std::string failureText = "The port has gone away.";

    std::vector<std::vector<std::uint8_t>> snapshot()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return messages;
    }
};

class FakePort : public midi::MidiOutPort
{
public:
    explicit FakePort(std::shared_ptr<FakePortLog> log) : m_log(std::move(log))
    {
        const std::lock_guard<std::mutex> lock(m_log->mutex);
        ++m_log->opened;
    }
    ~FakePort() override
    {
        const std::lock_guard<std::mutex> lock(m_log->mutex);
        ++m_log->closed;
    }
    void sendMessage(const std::vector<std::uint8_t>& bytes) override
    {
        const std::lock_guard<std::mutex> lock(m_log->mutex);
        if (m_log->failAfter >= 0 && static_cast<int>(m_log->messages.size()) >= m_log->failAfter)
            throw midi::CMIDIOutException(m_log->failureText);
        m_log->messages.push_back(bytes);
    }

private:
    std::shared_ptr<FakePortLog> m_log;
};

class FakePortList : public midi::MidiPortList
{
public:
    explicit FakePortList(std::vector<std::string> names) : m_names(std::move(names)) {}

    std::vector<std::string> deviceNames() override { return m_names; }
    std::unique_ptr<midi::MidiOutPort> openPort(unsigned number) override
    {
        if (number >= m_names.size() || number == m_refused)
            return nullptr;
        return std::make_unique<FakePort>(log);
    }

    /** A device number that is listed but cannot be opened. */
    void refuse(unsigned number) { m_refused = number; }

    std::shared_ptr<FakePortLog> log = std::make_shared<FakePortLog>();

private:
    std::vector<std::string> m_names;
    unsigned m_refused = 0xFFFFFFFF;
};
