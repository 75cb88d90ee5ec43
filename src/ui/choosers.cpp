#include "ui/choosers.h"

#include "base/runtime_error.h"
#include "trace/messages.h"
#include "ui/shown_text.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>

namespace vardelin::ui {
namespace {

constexpr std::string_view kNotAcceptable = "This Drive\\Folder selection is not acceptable one";
constexpr std::string_view kTitle = "Vardelin";

std::string nativeBytes(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

// The nearest folder above `start` that there is, in the machine's own form.
QString nearestFolder(const platform::FileSystem& fileSystem, std::string_view start)
{
    try {
        QString path = QFile::decodeName(QByteArray::fromStdString(fileSystem.toNative(start)));
        while (!QDir(path).exists() && !QDir(path).isRoot())
            path = QDir::cleanPath(path + QStringLiteral("/.."));
        return path;
    } catch (const base::RuntimeError&) {
        return QDir::homePath(); // no text, or a drive that is gone
    }
}

// `(*.vdp)|*.vdp|` as Qt writes it.
QStringList nameFilters(std::string_view filter)
{
    const QStringList parts = shown(filter).split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString pattern = QStringLiteral("(%1)").arg(parts[i + 1]);
        filters << (parts[i].contains(pattern) ? parts[i] : parts[i] + QLatin1Char(' ') + pattern);
    }
    return filters;
}

} // namespace

std::string usableFolder(platform::FileSystem& fileSystem, const std::string& native)
{
    try {
        std::string path = fileSystem.fromNative(native);
        // Opening alone asks for no right to read.
        fileSystem.openFolder(path)->list();
        if (!path.ends_with('\\'))
            path += '\\';
        return path;
    } catch (const base::RuntimeError&) {
        return {};
    }
}

std::string BrowseForFolder(const ChooserContext& context, QWidget* owner, std::string_view title,
                            std::string_view start)
{
    std::string chosen;
    trace::runTraced(context.trace, "BrowseForFolder", "ModGetDirectory",
                     trace::customMessage("BrowseForFolder"), [&] {
                         QString folder = nearestFolder(context.fileSystem, start);
                         while (chosen.empty()) {
                             QFileDialog dialog(owner, shown(title), folder);
                             dialog.setObjectName(QStringLiteral("BrowseForFolder"));
                             dialog.setFileMode(QFileDialog::Directory);
                             dialog.setOption(QFileDialog::ShowDirsOnly);
                             if (dialog.exec() != QDialog::Accepted)
                                 return;
                             folder = dialog.selectedFiles().value(0);
                             chosen = usableFolder(context.fileSystem, nativeBytes(folder));
                             if (chosen.empty())
                                 context.messageBoxes.show(kNotAcceptable, kTitle,
                                                           platform::Buttons::Ok,
                                                           platform::Icon::Exclamation);
                         }
                     });
    return chosen;
}

std::string QtFileChooser::chooseFile(std::string_view title, std::string_view filter,
                                      std::string_view startFolder)
{
    QWidget* const front = QApplication::activeModalWidget();
    QFileDialog dialog(front != nullptr ? front : m_parent, shown(title),
                       nearestFolder(m_context.fileSystem, startFolder));
    dialog.setObjectName(QStringLiteral("cdSelProfile"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // A name that does not exist is the caller's to answer.
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(nameFilters(filter));
    dialog.setDefaultSuffix(QStringLiteral("vdp"));
    if (dialog.exec() != QDialog::Accepted)
        return {};
    try {
        return m_context.fileSystem.fromNative(nativeBytes(dialog.selectedFiles().value(0)));
    } catch (const base::RuntimeError& error) {
        m_context.messageBoxes.show(error.what(), kTitle, platform::Buttons::Ok,
                                    platform::Icon::Exclamation);
        return {};
    }
}

} // namespace vardelin::ui
