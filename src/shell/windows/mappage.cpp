#include "shell/windows/mappage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPushButton>
#include <utility>

#include "shell/windows/commands.h"
#include "shell/windows/mapgrid.h"
#include "shell/windows/shown.h"
#include "tuning/maps.h"

namespace zandrel {

MapPage::MapPage(int map, Runner run, Popup popup, QWidget* parent)
    : QWidget(parent),
      map_(map),
      run_(std::move(run)),
      comMapType_(new QComboBox(this)),
      chkSplit_(new QCheckBox(this)),
      cmdReadMap_(new QPushButton(this)),
      cmdWriteMap_(new QPushButton(this)),
      grid_(new MapGridView(map, run_, std::move(popup), this)) {
    comMapType_->setObjectName(MemberName("comMapType", map));
    comMapType_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    comMapType_->setToolTip(QStringLiteral("What the cells show"));
    chkSplit_->setObjectName(MemberName("chkSplit", map));
    cmdReadMap_->setObjectName(MemberName("cmdReadMap", map));
    cmdReadMap_->setToolTip(QStringLiteral("Read this map from the Power-FC"));
    cmdWriteMap_->setObjectName(MemberName("cmdWriteMap", map));
    cmdWriteMap_->setToolTip(QStringLiteral("Write this map to the Power-FC"));

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
            CommandOf("comMapType").Click(map_);
        });
        grid_->setFocus();
    });
    connect(chkSplit_, &QCheckBox::clicked, this, [this](bool checked) {
        run_([this, checked] {
            chkSplit[static_cast<std::size_t>(map_)].Value = checked ? 1 : 0;
            CommandOf("chkSplit").Click(map_);
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

// A press beside the controls goes to the map.
void MapPage::mousePressEvent(QMouseEvent* event) {
    grid_->setFocus();
    event->accept();
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
