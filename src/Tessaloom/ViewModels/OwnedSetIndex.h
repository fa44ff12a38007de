// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QString>

#include <memory>

class BrickSetListModel;
class PersistentContainer;

// The set numbers of which the user owns a copy outside the trash, kept current by a live
// list of those copies: the catalog lists mark these sets as owned. A copy without a
// catalog set adds nothing. Main thread only.
class OwnedSetIndex : public QObject
{
    Q_OBJECT

public:
    explicit OwnedSetIndex(PersistentContainer &container, QObject *parent = nullptr);
    ~OwnedSetIndex() override;

    const QSet<QString> &setNumbers() const { return m_setNumbers; }

Q_SIGNALS:
    // Only when the set of numbers differs, not at every refetch of the copies.
    void setNumbersChanged();

private:
    void rebuild();

    std::unique_ptr<BrickSetListModel> m_ownedCopies;
    QSet<QString> m_setNumbers;
};
