// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Services/CatalogResults.h"
#include "Store/ManagedObjectContext.h"

#include <QWidget>

class CachedAsyncImage;
class QFormLayout;
class QLabel;

// The detail column's view of one set: its large picture and what identifies it — name,
// number, theme, year and pieces — and, for a copy from the collection, the copy's own
// condition, whether it is a favourite and when it was added. It shows a copy or a catalog
// set; nothing here edits either.
class SetPreviewView : public QWidget
{
    Q_OBJECT

public:
    explicit SetPreviewView(QWidget *parent = nullptr);

    void showCopy(const BrickSetWithCatalogSet &copy);
    // `themeName` is the theme's path or name, empty when unknown.
    void showCatalogSet(const CatalogSetResult &set, const QString &themeName);

    CachedAsyncImage *picture() const { return m_picture; }
    QString name() const;
    QString setNumber() const;
    // The label of each fact shown, with its value, in order.
    QList<std::pair<QString, QString>> facts() const;

private:
    void setFacts(const QList<std::pair<QString, QString>> &facts);

    CachedAsyncImage *m_picture;
    QLabel *m_name;
    QLabel *m_setNumber;
    QWidget *m_factsBox;
    QFormLayout *m_factsLayout;
    QList<std::pair<QString, QString>> m_facts;
};
