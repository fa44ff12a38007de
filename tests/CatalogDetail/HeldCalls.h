// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/LegoInstructionsService.h"
#include "Store/ObjectID.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QFutureInterface>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <stdexcept>

// Stand-ins for the two slow calls of the catalog detail screen, which the test answers
// when it chooses: each call waits until the test releases it, then gives its answer,
// fails, or (for the sync) hands over to the real operation.
class HeldCalls
{
public:
    struct Call
    {
        QString setNumber;
        QFutureInterface<void> gate;
        bool fail = false;
        // Set as the answer leaves: the caller's code after its co_await has run by the
        // time the event loop turns again.
        bool delivered = false;
        QList<LegoInstructionsService::Instruction> instructions;
    };

    QList<std::shared_ptr<Call>> calls;

    // Booklet lookups that wait for answer() or fail().
    LegoInstructionsService::Fetcher instructionsFetcher()
    {
        return [this](QString setNumber) -> QCoro::Task<QList<LegoInstructionsService::Instruction>> {
            const std::shared_ptr<Call> call = hold(setNumber);
            co_await call->gate.future();
            call->delivered = true;
            if (call->fail)
                throw std::runtime_error("the instructions lookup failed");
            co_return call->instructions;
        };
    }

    // Syncs that wait for release() or fail(), then run `sync`.
    std::function<QCoro::Task<ObjectID>(QString)> heldSync(std::function<QCoro::Task<ObjectID>(QString)> sync)
    {
        return [this, sync](QString setNumber) -> QCoro::Task<ObjectID> {
            const std::shared_ptr<Call> call = hold(setNumber);
            const auto run = sync; // the frame's own copy: the lambda may be gone on resuming
            co_await call->gate.future();
            if (call->fail)
                throw std::runtime_error("the sync failed");
            co_return co_await run(setNumber);
        };
    }

    void answer(int index, const QList<LegoInstructionsService::Instruction> &instructions)
    {
        calls[index]->instructions = instructions;
        calls[index]->gate.reportFinished();
    }

    void release(int index) { calls[index]->gate.reportFinished(); }

    void fail(int index)
    {
        calls[index]->fail = true;
        calls[index]->gate.reportFinished();
    }

private:
    std::shared_ptr<Call> hold(const QString &setNumber)
    {
        auto call = std::make_shared<Call>();
        call->setNumber = setNumber;
        call->gate.reportStarted();
        calls.append(call);
        return call;
    }
};
