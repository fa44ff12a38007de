// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

// Waits out typing in the catalog's search field: each change of the text cancels the
// wait on its way; a text that is not empty starts a new wait, after which searchDue()
// fires once; an emptied text makes the search due at once, since showing everything
// again should not lag. Main thread only.
class CatalogSearchDebounce : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds defaultPause{200};

    explicit CatalogSearchDebounce(std::chrono::milliseconds pause = defaultPause, QObject *parent = nullptr);

    void textChanged(const QString &text);
    // Drops the wait on its way, if any: nothing fires for it.
    void cancel() { m_wait.stop(); }
    bool isWaiting() const { return m_wait.isActive(); }

Q_SIGNALS:
    void searchDue();

private:
    QTimer m_wait;
};
