// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ViewModels/ChecklistItem.h"

#include <QWidget>

class CachedAsyncImage;
class ColorSwatch;
class ImageCacheService;
class QLabel;
class QToolButton;

// One row of a copy's parts checklist: a completion mark, the part's picture, its facts
// (name, number, colour, category) and, on the right, the owned count of the required
// quantity between a button for one fewer and a button for one more. The row only asks;
// the view model changes the count and the window tells the row the new one.
class ChecklistRowView : public QWidget
{
    Q_OBJECT

public:
    ChecklistRowView(const ChecklistItem &item, int owned, bool isComplete, QWidget *parent = nullptr);

    const ChecklistItem &item() const { return m_item; }
    int owned() const { return m_owned; }
    bool isComplete() const { return m_isComplete; }
    void setOwned(int owned, bool isComplete);
    void setImageCache(ImageCacheService *cache);
    // The part's picture address, and whether its load has been started. The owner starts
    // it once the row comes into view, so a long list does not fetch every picture at once.
    QString pictureURL() const { return m_pictureURL; }
    bool isPictureRequested() const;
    void requestPicture();

    QLabel *completionMark() const { return m_completionMark; }
    CachedAsyncImage *picture() const { return m_picture; }
    QLabel *nameLabel() const { return m_nameLabel; }
    QLabel *detailLabel() const { return m_detailLabel; }
    QLabel *countLabel() const { return m_countLabel; }
    QToolButton *decrementButton() const { return m_decrementButton; }
    QToolButton *incrementButton() const { return m_incrementButton; }

Q_SIGNALS:
    void incrementRequested(const ChecklistItem &item);
    void decrementRequested(const ChecklistItem &item);
    // The row has just been shown; its place in the list is known from now on.
    void shown();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refresh();

    ChecklistItem m_item;
    QString m_pictureURL;
    int m_owned;
    bool m_isComplete;
    QLabel *m_completionMark;
    CachedAsyncImage *m_picture;
    QLabel *m_nameLabel;
    ColorSwatch *m_swatch;
    QLabel *m_detailLabel;
    QLabel *m_countLabel;
    QToolButton *m_decrementButton;
    QToolButton *m_incrementButton;
};
