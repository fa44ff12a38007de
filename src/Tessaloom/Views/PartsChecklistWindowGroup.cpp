// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/PartsChecklistWindowGroup.h"

#include "Logging.h"
#include "Store/BrickSet.h"
#include "Store/ManagedObjectContext.h"
#include "Store/StoreError.h"
#include "ViewModels/PartsChecklistViewModel.h"
#include "Views/PartsChecklistWindow.h"

#include <QWidget>

PartsChecklistWindowGroup::PartsChecklistWindowGroup(ManagedObjectContext &viewContext, QWidget *windowParent,
                                                     QObject *parent)
    : QObject(parent)
    , m_viewContext(viewContext)
    , m_windowParent(windowParent)
{
}

PartsChecklistWindowGroup::~PartsChecklistWindowGroup() = default;

PartsChecklistWindow *PartsChecklistWindowGroup::open(const ObjectID &brickSet)
{
    return open(brickSet.uriRepresentation());
}

PartsChecklistWindow *PartsChecklistWindowGroup::open(const QUrl &copyURI)
{
    if (PartsChecklistWindow *existing = window(copyURI)) {
        existing->show();
        existing->raise();
        existing->activateWindow();
        return existing;
    }

    std::optional<BrickSet> copy;
    if (const std::optional<ObjectID> id = ObjectID::fromURIRepresentation(copyURI);
        id && id->entity == EntityType::BrickSet) {
        try {
            copy = m_viewContext.existingObject<BrickSet>(*id);
        } catch (const StoreError &error) {
            // Counts as no such copy: the window opens empty, as for a copy that is gone.
            qCWarning(lcPersistence) << "Looking up the copy of a parts checklist failed:" << error.description();
        }
    }
    std::unique_ptr<PartsChecklistViewModel> viewModel;
    if (copy)
        viewModel = std::make_unique<PartsChecklistViewModel>(*copy, m_viewContext);

    auto *checklist = new PartsChecklistWindow(std::move(viewModel), m_windowParent);
    checklist->setAttribute(Qt::WA_DeleteOnClose);
    m_windows.insert(copyURI, checklist);
    connect(checklist, &QObject::destroyed, this, [this, copyURI] {
        if (!m_windows.value(copyURI))
            m_windows.remove(copyURI);
    });
    checklist->show();
    checklist->raise();
    checklist->activateWindow();
    return checklist;
}

PartsChecklistWindow *PartsChecklistWindowGroup::window(const QUrl &copyURI) const
{
    return m_windows.value(copyURI).data();
}

QList<PartsChecklistWindow *> PartsChecklistWindowGroup::windows() const
{
    QList<PartsChecklistWindow *> open;
    for (const QPointer<PartsChecklistWindow> &checklist : m_windows) {
        if (checklist)
            open.append(checklist.data());
    }
    return open;
}
