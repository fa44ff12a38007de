// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSignalSpy>
#include <QString>

#include <qt6keychain/keychain.h>

#include <optional>

// The secret store seen from outside KeychainService, as another program or an earlier
// version of this one would write and read it: for tests that set up or check items of
// the service "com.tessaloom.app" behind the service's back.
namespace SecretStoreDirectly {

using namespace Qt::StringLiterals;

inline QKeychain::Error runDirectly(QKeychain::Job &job)
{
    job.setAutoDelete(false);
    job.setInsecureFallback(false);
    QSignalSpy finished(&job, &QKeychain::Job::finished);
    job.start();
    if (finished.isEmpty())
        finished.wait(30000);
    return finished.isEmpty() ? QKeychain::OtherError : job.error();
}

inline QKeychain::Error writeDirectly(const QString &account, const QByteArray &bytes)
{
    QKeychain::WritePasswordJob job(u"com.tessaloom.app"_s);
    job.setKey(account);
    job.setBinaryData(bytes);
    return runDirectly(job);
}

inline QKeychain::Error deleteDirectly(const QString &account)
{
    QKeychain::DeletePasswordJob job(u"com.tessaloom.app"_s);
    job.setKey(account);
    return runDirectly(job);
}

// The bytes of the item, or absent when there is none.
inline std::optional<QByteArray> readDirectly(const QString &account)
{
    QKeychain::ReadPasswordJob job(u"com.tessaloom.app"_s);
    job.setKey(account);
    if (runDirectly(job) != QKeychain::NoError)
        return std::nullopt;
    return job.binaryData();
}

} // namespace SecretStoreDirectly
