#pragma once

#include <string>
#include <utility>

namespace music {

/**
 * The outcome of an operation that can fail in an expected way: a numeric code and the message
 * text the user sees. Code 0 is success. The core returns these; the desktop program shows the
 * message in a box, the command-line program prints it to stderr.
 */
class Result
{
public:
    Result() = default;

    static Result success() { return {}; }
    /** A failure; `code` must not be 0. */
    static Result failure(std::string message, int code = 1)
    {
        Result r;
        r.m_code = code == 0 ? 1 : code;
        r.m_message = std::move(message);
        return r;
    }

    bool ok() const { return m_code == 0; }
    explicit operator bool() const { return ok(); }
    int code() const { return m_code; }
    const std::string& message() const { return m_message; }

private:
    int m_code = 0;
    std::string m_message;
};

} // namespace music
