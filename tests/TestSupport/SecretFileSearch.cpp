// SPDX-License-Identifier: GPL-3.0-or-later
#include "SecretFileSearch.h"

#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QList>

QStringList SecretFileSearch::filesHolding(const QString &folder, const QString &secret)
{
    const QList<QByteArray> forms{secret.toUtf8(),
                                  QByteArray(reinterpret_cast<const char *>(secret.utf16()), secret.size() * 2),
                                  secret.toLatin1()};
    QStringList holding;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        for (const QByteArray &form : forms) {
            if (bytes.contains(form)) {
                holding << file.fileName();
                break;
            }
        }
    }
    return holding;
}
