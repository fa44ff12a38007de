// SPDX-License-Identifier: GPL-3.0-or-later
#include "Views/APIKeysSettingsTab.h"

#include "Services/PricingProviderRegistry.h"
#include "Views/SymbolIcon.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Caption size and the secondary colour of the platform's forms.
void makeCaption(QWidget *label)
{
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.85);
    label->setFont(font);
    label->setForegroundRole(QPalette::PlaceholderText);
}

} // namespace

QList<APIKeysSettingsTab::CapabilityLabel> APIKeysSettingsTab::capabilityRow(PricingCapability capabilities)
{
    QList<CapabilityLabel> labels;
    if (capabilities.contains(PricingCapability::soldPrices)) {
        //% "Sold prices"
        labels.append({u"settings.apiKeys.soldData"_s, qtTrId("settings.apiKeys.soldData"), u"checkmark.circle.fill"_s});
    } else if (capabilities.contains(PricingCapability::stockPrices)) {
        //% "Listings only"
        labels.append({u"settings.apiKeys.listingsOnly"_s, qtTrId("settings.apiKeys.listingsOnly"), u"tag"_s});
    }
    if (capabilities.contains(PricingCapability::bulkFetch)) {
        //% "Bulk"
        labels.append({u"settings.apiKeys.bulk"_s, qtTrId("settings.apiKeys.bulk"), u"arrow.down.circle.fill"_s});
    }
    const bool hasNew = capabilities.contains(PricingCapability::newCondition);
    const bool hasUsed = capabilities.contains(PricingCapability::usedCondition);
    if (hasNew && hasUsed) {
        //% "New & used"
        labels.append({u"settings.apiKeys.newAndUsed"_s, qtTrId("settings.apiKeys.newAndUsed"), QString()});
    } else if (hasNew) {
        //% "New only"
        labels.append({u"settings.apiKeys.newOnly"_s, qtTrId("settings.apiKeys.newOnly"), QString()});
    } else if (hasUsed) {
        //% "Used only"
        labels.append({u"settings.apiKeys.usedOnly"_s, qtTrId("settings.apiKeys.usedOnly"), QString()});
    } else {
        labels.append({QString(), QString(), QString()});
    }
    return labels;
}

APIKeysSettingsTab::APIKeysSettingsTab(QWidget *parent)
    : APIKeysSettingsTab(PricingProviderRegistry::shared().enabledProviderInfos(),
                         SettingsViewModel::CredentialStore::from(KeychainService::shared()), parent)
{
}

APIKeysSettingsTab::APIKeysSettingsTab(QList<PricingProviderInfo> providers, SettingsViewModel::CredentialStore store,
                                       QWidget *parent)
    : QWidget(parent)
    , m_providers(std::move(providers))
    , m_viewModel(new SettingsViewModel(std::move(store), this))
{
    auto *layout = new QVBoxLayout(this);

    m_descriptionSection = new QGroupBox(this);
    m_descriptionSection->setObjectName(u"apiKeysDescription"_s);
    auto *descriptionLayout = new QVBoxLayout(m_descriptionSection);
    //% "Prices come from the services below. Enter the keys of your own account with each; they are kept in your desktop's secret store and nowhere else."
    auto *description = new QLabel(qtTrId("settings.apiKeys.description"), m_descriptionSection);
    description->setWordWrap(true);
    descriptionLayout->addWidget(description);
    layout->addWidget(m_descriptionSection);

    for (const PricingProviderInfo &info : std::as_const(m_providers)) {
        QGroupBox *section = buildProviderSection(info);
        m_providerSections.append(section);
        layout->addWidget(section);
    }
    layout->addStretch(1);

    connect(m_viewModel, &SettingsViewModel::providerCredentialsChanged, this, &APIKeysSettingsTab::showCredential);
}

QGroupBox *APIKeysSettingsTab::buildProviderSection(const PricingProviderInfo &info)
{
    auto *section = new QGroupBox(info.displayName, this);
    section->setObjectName(u"providerSection."_s + info.id);
    auto *sectionLayout = new QVBoxLayout(section);
    for (const PricingProviderInfo::CredentialField &credentialField : info.credentialKeys) {
        const QString key = SettingsViewModel::credentialKey(info.id, credentialField.key);
        auto *row = new QHBoxLayout();
        auto *field = new QLineEdit(section);
        field->setObjectName(u"credentialField."_s + key);
        field->setPlaceholderText(credentialField.displayName);
        field->setClearButtonEnabled(false);
        // No input method may remember or predict what is typed into a key.
        field->setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
        connect(field, &QLineEdit::textEdited, this,
                [this, key](const QString &text) { m_viewModel->setCredential(text, key); });
        row->addWidget(field, 1);
        m_fields.insert(key, field);
        if (credentialField.isSecret) {
            field->setEchoMode(QLineEdit::Password);
            auto *toggle = new QToolButton(section);
            toggle->setObjectName(u"showToggle."_s + key);
            toggle->setCheckable(true);
            //% "Show"
            toggle->setText(qtTrId("settings.apiKeys.show"));
            //% "Show the key while this is pressed in"
            toggle->setToolTip(qtTrId("settings.apiKeys.showHint"));
            connect(toggle, &QToolButton::toggled, field, [field](bool shown) {
                field->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
            });
            row->addWidget(toggle);
            m_showToggles.insert(key, toggle);
        }
        sectionLayout->addLayout(row);
    }
    sectionLayout->addWidget(buildCapabilityLine(info, section));
    return section;
}

QWidget *APIKeysSettingsTab::buildCapabilityLine(const PricingProviderInfo &info, QWidget *parent)
{
    if (info.capabilities.isEmpty()) {
        //% "Brickset supplies set facts, not prices."
        auto *text = new QLabel(qtTrId("settings.apiKeys.bricksetDescription"), parent);
        text->setObjectName(u"capabilityLine"_s);
        text->setWordWrap(true);
        makeCaption(text);
        return text;
    }
    auto *line = new QWidget(parent);
    line->setObjectName(u"capabilityLine"_s);
    auto *lineLayout = new QHBoxLayout(line);
    lineLayout->setContentsMargins(0, 0, 0, 0);
    lineLayout->setSpacing(12);
    for (const CapabilityLabel &capability : capabilityRow(info.capabilities)) {
        auto *item = new QWidget(line);
        item->setObjectName(capability.textKey.isEmpty() ? u"capability.condition.none"_s
                                                         : u"capability."_s + capability.textKey);
        auto *itemLayout = new QHBoxLayout(item);
        itemLayout->setContentsMargins(0, 0, 0, 0);
        itemLayout->setSpacing(4);
        if (!capability.symbol.isEmpty()) {
            auto *icon = new QLabel(item);
            const int size = item->fontMetrics().height();
            icon->setPixmap(SymbolIcon::icon(capability.symbol).pixmap(size, size));
            itemLayout->addWidget(icon);
        }
        auto *text = new QLabel(capability.text, item);
        text->setObjectName(u"capabilityText"_s);
        makeCaption(text);
        itemLayout->addWidget(text);
        lineLayout->addWidget(item);
    }
    lineLayout->addStretch(1);
    return line;
}

void APIKeysSettingsTab::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_loadStarted)
        return;
    m_loadStarted = true;
    load();
}

QCoro::Task<> APIKeysSettingsTab::load()
{
    QPointer<APIKeysSettingsTab> self(this);
    co_await m_viewModel->loadCredentials(m_providers);
    if (!self)
        co_return;
    m_hasLoaded = true;
    Q_EMIT credentialsLoaded();
}

void APIKeysSettingsTab::showCredential(const QString &key)
{
    QLineEdit *field = m_fields.value(key);
    if (!field)
        return;
    const QString value = m_viewModel->credential(key);
    // The field that was typed into already shows this; setting it again would move the cursor.
    if (field->text() != value)
        field->setText(value);
}
