// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/PartImageURL.h"

#include "Endpoints.h"

using namespace Qt::StringLiterals;

QString PartImageURL::forPart(const std::optional<QString> &imgURL, int colorID, const QString &partNum)
{
    // An empty address is no address: the catalog keeps an empty cell as empty text.
    if (imgURL && !imgURL->isEmpty())
        return *imgURL;
    return formed(colorID, partNum);
}

QString PartImageURL::formed(int colorID, const QString &partNum)
{
    // The media host is read on each call: TESSALOOM_ENDPOINTS may point it elsewhere.
    const QString path = u"/media/parts/ldraw/"_s + QString::number(colorID) + u'/' + partNum + u".png"_s;
    return Endpoints::url(Endpoints::Service::rebrickable, path).toString();
}
