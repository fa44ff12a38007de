// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class PersistentContainer;
class QThreadPool;
class StoreConnection;

// Gives an ended background context's connection and worker back to the pools of the
// container that lent them, when that container is still open and the connection is one
// it opened; otherwise they close here. A context may end after its container (a block
// still running while the store closes), so the container is looked up in the register
// of open containers, never reached through a pointer that may dangle. Thread-safe.
void giveBackToContainer(const PersistentContainer *container, std::unique_ptr<StoreConnection> connection,
                         std::unique_ptr<QThreadPool> worker);
