// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QFutureInterface>
#include <QList>
#include <QString>

#include <memory>
#include <stdexcept>

// The two steps of a refresh as the test plays them: the catalog sync answers with a
// chosen CatalogSet once the test releases it (or fails), the price sync counts its calls
// and may fail. Every call is recorded with the set number it was given.
class HeldSync
{
public:
    struct Call
    {
        QString setNumber;
        QFutureInterface<void> gate;
        bool fail = false;
    };

    QList<std::shared_ptr<Call>> catalogCalls;
    QList<std::pair<QString, ObjectID>> priceCalls;
    ObjectID answer;
    bool holdCatalog = false;
    bool failCatalog = false;
    bool failPrices = false;

    std::function<QCoro::Task<ObjectID>(QString)> catalogStep()
    {
        return [this](QString setNumber) -> QCoro::Task<ObjectID> {
            auto call = std::make_shared<Call>();
            call->setNumber = setNumber;
            call->fail = failCatalog;
            call->gate.reportStarted();
            catalogCalls.append(call);
            const ObjectID result = answer;
            if (holdCatalog)
                co_await call->gate.future();
            if (call->fail)
                throw std::runtime_error("The catalog has no set 4242.");
            co_return result;
        };
    }

    std::function<QCoro::Task<>(QString, ObjectID)> priceStep()
    {
        return [this](QString setNumber, ObjectID catalogSet) -> QCoro::Task<> {
            priceCalls.append({setNumber, catalogSet});
            if (failPrices)
                throw std::runtime_error("No price service is set up.");
            co_return;
        };
    }

    void release(int index) { catalogCalls[index]->gate.reportFinished(); }
};
