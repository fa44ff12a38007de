// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoroTask>
#include <QString>

#include <exception>
#include <optional>

// The value or the failure of a finished coroutine. QCoro::waitFor alone would never return
// from a task that throws, so tests wait through this instead.
template<typename T>
struct TaskOutcome
{
    std::optional<T> value;
    std::exception_ptr failure;

    // The failure as `Error`, or nothing when it failed otherwise or not at all.
    template<typename Error>
    std::optional<Error> error() const
    {
        if (!failure)
            return std::nullopt;
        try {
            std::rethrow_exception(failure);
        } catch (const Error &error) {
            return error;
        } catch (...) {
            return std::nullopt;
        }
    }

    QString failureText() const
    {
        if (!failure)
            return {};
        try {
            std::rethrow_exception(failure);
        } catch (const std::exception &error) {
            return QString::fromUtf8(error.what());
        } catch (...) {
            return QStringLiteral("(not a std::exception)");
        }
    }
};

template<typename T>
QCoro::Task<TaskOutcome<T>> captureOutcome(QCoro::Task<T> task)
{
    TaskOutcome<T> outcome;
    try {
        outcome.value = co_await std::move(task);
    } catch (...) {
        outcome.failure = std::current_exception();
    }
    co_return outcome;
}

// Runs `task` to its end in a local event loop.
template<typename T>
TaskOutcome<T> waitForOutcome(QCoro::Task<T> task)
{
    return QCoro::waitFor(captureOutcome(std::move(task)));
}
