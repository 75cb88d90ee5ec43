#include "ui/about_view.h"

#include "ui/widgets.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kPicture = 72;      // device-independent pixels
constexpr double kNameSize = 1.9; // of the product's name, in sizes of the text
constexpr int kColumnRoom = 24;

struct Library {
    const char* name;
    const char* serves;
    const char* licence;
};

constexpr Library kLibraries[] = {
    {"Qt 6", "Windows and pictures", "LGPL 3"}, {"Zstandard", "Compression", "BSD 3-Clause"},
    {"libsodium", "Encryption", "ISC"},         {"xxHash", "Checksums", "BSD 2-Clause"},
    {"SQLite", "Settings", "Public domain"},    {"{fmt}", "Texts", "MIT"},
};

QLabel* heading(const char* name, double size)
{
    auto* label = named<QLabel>(name, QStringLiteral("Vardelin"));
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * size);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QGridLayout* libraries()
{
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(kColumnRoom);
    int row = 0;
    for (const Library& library : kLibraries) {
        grid->addWidget(new QLabel(QLatin1String(library.name)), row, 0);
        grid->addWidget(new QLabel(QLatin1String(library.serves)), row, 1);
        grid->addWidget(new QLabel(QLatin1String(library.licence)), row, 2);
        ++row;
    }
    grid->setColumnStretch(1, 1);
    return grid;
}

} // namespace

AboutView::AboutView(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Vardelin"));
    auto* picture = named<QLabel>("picture");
    picture->setPixmap(QIcon(QStringLiteral(":/icons/vardelin.svg"))
                           .pixmap(QSize(kPicture, kPicture), devicePixelRatio()));
    picture->setAlignment(Qt::AlignTop);
    auto* version = named<QLabel>(
        "lblVersion", QStringLiteral("Version %1").arg(QLatin1String(productVersion())));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* text = lined<QVBoxLayout>(
        heading("lblName", kNameSize), version,
        new QLabel(QStringLiteral("Keeps copies and earlier versions of your files.")));
    text->addSpacing(text->spacing());
    text->addWidget(line);
    text->addSpacing(text->spacing());
    text->addWidget(new QLabel(QStringLiteral("Made with these libraries, with thanks:")));
    text->addLayout(libraries());
    text->addStretch();
    auto* top = lined<QHBoxLayout>(picture);
    top->addSpacing(kColumnRoom / 2);
    top->addLayout(text, 1);

    auto* accept = named<QPushButton>("cmdOK", QStringLiteral("&OK"));
    accept->setDefault(true);
    connect(accept, &QPushButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addSpacing(layout->spacing());
    layout->addLayout(buttons);
}

const char* productVersion()
{
    return VARDELIN_VERSION;
}

} // namespace vardelin::ui
