#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace kelva {

enum class ErrorCode {
    BadInput, ///< the request itself is wrong: unknown field, malformed clause, missing name
    NotFound, ///< no such record, file or archive
    Refused,  ///< the session may not do this
    Conflict, ///< somebody else changed the record in the meantime
    InUse,    ///< the record is still referenced
    WrongPassword,
    PasswordExpired,
    WrongVersion, ///< the archive file is of a newer schema
    NotAnArchive, ///< the file is no archive or is damaged
    Busy,         ///< locked by another process for longer than the busy time
    Storage,      ///< the medium failed: full, read-only, unreadable
    TooSlow,      ///< given up after the time that a list may take
    NotAvailable, ///< this build cannot do it
};

struct Error
{
    ErrorCode code = ErrorCode::BadInput;
    QString text; ///< a whole sentence for the user, in English
};

/// A value or the error that prevented it. value() may only be asked of a result that is ok().
template<typename T>
class [[nodiscard]] Result
{
public:
    Result(T value) : m_content(std::move(value)) {}
    Result(Error error) : m_content(std::move(error)) {}

    bool ok() const { return std::holds_alternative<T>(m_content); }
    explicit operator bool() const { return ok(); }
    T &value() { return std::get<T>(m_content); }
    const T &value() const { return std::get<T>(m_content); }
    const Error &error() const { return std::get<Error>(m_content); }

private:
    std::variant<T, Error> m_content;
};

template<>
class [[nodiscard]] Result<void>
{
public:
    Result() = default;
    Result(Error error) : m_error(std::move(error)), m_ok(false) {}

    bool ok() const { return m_ok; }
    explicit operator bool() const { return m_ok; }
    const Error &error() const { return m_error; }

private:
    Error m_error;
    bool m_ok = true;
};

} // namespace kelva
