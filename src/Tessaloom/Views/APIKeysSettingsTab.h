// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PricingProviderInfo.h"
#include "ViewModels/SettingsViewModel.h"

#include <QHash>
#include <QWidget>

class QGroupBox;
class QLabel;
class QLineEdit;
class QToolButton;

// The API keys settings: a description, then one group per price source in use with a
// field for each of its credentials and a line saying what the source delivers. The
// fields load from the secret store the first time the tab shows, and each keystroke goes
// to the tab's own SettingsViewModel, which saves after a pause. Secrets are masked, each
// with a toggle that shows it while checked; nothing here logs or stores a typed value.
class APIKeysSettingsTab : public QWidget
{
    Q_OBJECT

public:
    // One label of a source's capability line: its localisation key (empty for the empty
    // condition label), its text and its symbol (empty for none).
    struct CapabilityLabel
    {
        QString textKey;
        QString text;
        QString symbol;

        friend bool operator==(const CapabilityLabel &, const CapabilityLabel &) = default;
    };
    // The labels of the capability line of `capabilities`, in order: sold data or listings
    // only, bulk, and the condition label, always last and empty when neither condition
    // flag is set.
    static QList<CapabilityLabel> capabilityRow(PricingCapability capabilities);

    // The sources of PricingProviderRegistry::shared() that are in use, over
    // KeychainService::shared().
    explicit APIKeysSettingsTab(QWidget *parent = nullptr);
    APIKeysSettingsTab(QList<PricingProviderInfo> providers, SettingsViewModel::CredentialStore store,
                       QWidget *parent = nullptr);

    SettingsViewModel &viewModel() const { return *m_viewModel; }
    // The groups below the description, one per source.
    QList<QGroupBox *> providerSections() const { return m_providerSections; }
    QGroupBox *descriptionSection() const { return m_descriptionSection; }
    QLineEdit *field(const QString &credentialKey) const { return m_fields.value(credentialKey); }
    QToolButton *showToggle(const QString &credentialKey) const { return m_showToggles.value(credentialKey); }
    bool hasLoaded() const { return m_hasLoaded; }

Q_SIGNALS:
    // The fields show what the secret store holds.
    void credentialsLoaded();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QGroupBox *buildProviderSection(const PricingProviderInfo &info);
    QWidget *buildCapabilityLine(const PricingProviderInfo &info, QWidget *parent);
    QCoro::Task<> load();
    void showCredential(const QString &key);

    QList<PricingProviderInfo> m_providers;
    SettingsViewModel *m_viewModel;
    QGroupBox *m_descriptionSection = nullptr;
    QList<QGroupBox *> m_providerSections;
    QHash<QString, QLineEdit *> m_fields;
    QHash<QString, QToolButton *> m_showToggles;
    bool m_loadStarted = false;
    bool m_hasLoaded = false;
};
