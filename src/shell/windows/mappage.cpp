#include "shell/windows/mappage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <utility>

#include "link/progress.h"
#include "shell/windows/commands.h"
#include "shell/windows/mapgrid.h"
#include "shell/windows/shown.h"
#include "tuning/maps.h"

namespace zandrel {
namespace {

void MirrorButton(QPushButton* button, const Control& record, const char* name) {
    const Command& command = CommandOf(name);
    const QString text = Shown(record.Caption);
    if (button->text() != text) button->setText(text);
    const bool enabled = record.Enabled && command.Click != nullptr && !LongOperationRuns();
    if (button->isEnabled() != enabled) button->setEnabled(enabled);
    if (button->isHidden() == record.Visible) button->setVisible(record.Visible);
}

}  // namespace

MapPage::MapPage(int map, Runner run, QWidget* parent)
    : QWidget(parent),
      map_(map),
      run_(std::move(run)),
      comMapType_(new QComboBox(this)),
      chkSplit_(new QCheckBox(this)),
      cmdReadMap_(new QPushButton(this)),
      cmdWriteMap_(new QPushButton(this)),
      grid_(new MapGridView(map, this)) {
    comMapType_->setObjectName(MemberName("comMapType", map));
    comMapType_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    comMapType_->setToolTip(QStringLiteral("What the cells show"));
    chkSplit_->setObjectName(MemberName("chkSplit", map));
    cmdReadMap_->setObjectName(MemberName("cmdReadMap", map));
    cmdReadMap_->setToolTip(QStringLiteral("Read this map from the Power-FC"));
    cmdWriteMap_->setObjectName(MemberName("cmdWriteMap", map));
    if (!HasHandler("cmdWriteMap"))
        cmdWriteMap_->setToolTip(QString::fromUtf8(CommandOf("cmdWriteMap").Later));

    auto* column = new QVBoxLayout(this);
    const int gap = fontMetrics().height() / 3;
    column->setContentsMargins(gap, gap, gap, gap);
    column->setSpacing(gap);
    auto* row = new QHBoxLayout;
    row->addWidget(comMapType_);
    row->addWidget(chkSplit_);
    row->addStretch(1);
    row->addWidget(cmdReadMap_);
    row->addWidget(cmdWriteMap_);
    column->addLayout(row);
    column->addWidget(grid_, 1);

    connect(comMapType_, &QComboBox::activated, this, [this](int index) {
        run_([this, index] {
            comMapType[static_cast<std::size_t>(map_)].ListIndex = index;
            comMapType_Click(map_);
        });
        grid_->setFocus();
    });
    connect(chkSplit_, &QCheckBox::clicked, this, [this](bool checked) {
        run_([this, checked] {
            chkSplit[static_cast<std::size_t>(map_)].Value = checked ? 1 : 0;
            chkSplit_Click(map_);
        });
    });
    connect(cmdReadMap_, &QPushButton::clicked, this,
            [this] { run_([this] { CommandOf("cmdReadMap").Click(map_); }); });
    connect(cmdWriteMap_, &QPushButton::clicked, this,
            [this] { run_([this] { CommandOf("cmdWriteMap").Click(map_); }); });
    Mirror();
}

void MapPage::Mirror() {
    MirrorSelector();
    MirrorSplit();
    MirrorButtons();
    grid_->Mirror();
}

void MapPage::MirrorSelector() {
    const ComboBox& record = comMapType[static_cast<std::size_t>(map_)];
    if (record.Items != items_) {
        items_ = record.Items;
        comMapType_->clear();
        for (const std::string& item : items_) comMapType_->addItem(Shown(item));
    }
    if (comMapType_->currentIndex() != record.ListIndex) comMapType_->setCurrentIndex(record.ListIndex);
    if (comMapType_->isHidden() == record.Visible) comMapType_->setVisible(record.Visible);
}

void MapPage::MirrorSplit() {
    const Control& record = chkSplit[static_cast<std::size_t>(map_)];
    if (record.Caption != splitCaption_) {
        splitCaption_ = record.Caption;
        chkSplit_->setText(WithoutMnemonic(record.Caption));
    }
    if (chkSplit_->isChecked() != (record.Value != 0)) chkSplit_->setChecked(record.Value != 0);
    if (chkSplit_->isHidden() == record.Visible) chkSplit_->setVisible(record.Visible);
}

void MapPage::MirrorButtons() {
    const auto at = static_cast<std::size_t>(map_);
    MirrorButton(cmdReadMap_, cmdReadMap[at], "cmdReadMap");
    MirrorButton(cmdWriteMap_, cmdWriteMap[at], "cmdWriteMap");
}

}  // namespace zandrel
