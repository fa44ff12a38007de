// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ObjectID.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QUrl>

class ManagedObjectContext;
class PartsChecklistWindow;
class QWidget;

// The parts checklist windows of the application, one per copy. A window is opened for
// the URI of a copy's ObjectID: the copy is looked up in the view context, and the window
// shows its checklist. A URI that names nothing the window can show (not a URI of the
// store, another entity, a copy that is gone) opens an empty window without a message.
// Opening a URI whose window is still open brings that window to the front instead.
class PartsChecklistWindowGroup : public QObject
{
    Q_OBJECT

public:
    // Windows are made with `windowParent` as their parent, so they close with it.
    PartsChecklistWindowGroup(ManagedObjectContext &viewContext, QWidget *windowParent, QObject *parent = nullptr);
    ~PartsChecklistWindowGroup() override;

    PartsChecklistWindow *open(const QUrl &copyURI);
    PartsChecklistWindow *open(const ObjectID &brickSet);
    // The open window of `copyURI`, if any.
    PartsChecklistWindow *window(const QUrl &copyURI) const;
    QList<PartsChecklistWindow *> windows() const;

private:
    ManagedObjectContext &m_viewContext;
    QPointer<QWidget> m_windowParent;
    QHash<QUrl, QPointer<PartsChecklistWindow>> m_windows;
};
