#pragma once

#include "app_rig.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QTreeView>

namespace vardelin::test {

// What a person does at the window, as stories tell it.
class WindowStory : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(m_awaited, 0) << "forms that never came up"; }

    void run(const char* command) { rig.find<QAction>(command).trigger(); }

    // As soon as the form of this name is in front, a person does this in it, which ends it.
    void inForm(const char* name, std::function<void(QWidget&)> act)
    {
        auto* timer = new QTimer(&m_stage);
        ++m_awaited;
        QElapsedTimer waited;
        waited.start();
        QObject::connect(timer, &QTimer::timeout, timer,
                         [this, timer, name, waited, act = std::move(act)] {
                             constexpr int kLongest = 20'000; // milliseconds
                             QWidget* const front = QApplication::activeModalWidget();
                             if (front != nullptr && front->objectName() == QLatin1String(name)) {
                                 timer->stop();
                                 timer->deleteLater();
                                 --m_awaited;
                                 const QPointer<QWidget> form = front;
                                 act(*front);
                                 // A story that left it open would never go on.
                                 if (form && form->isVisible()) {
                                     ADD_FAILURE() << name << " is still open";
                                     form->close();
                                 }
                             } else if (waited.elapsed() > kLongest) {
                                 timer->deleteLater();
                                 --m_awaited;
                                 ADD_FAILURE() << "no form " << name;
                                 if (front != nullptr)
                                     front->close();
                             }
                         });
        timer->start(1);
    }
    template <typename Widget>
    static Widget& in(QWidget& form, const char* name)
    {
        auto* widget = form.findChild<Widget*>(QLatin1String(name));
        if (widget == nullptr)
            throw std::runtime_error(std::string("no widget ") + name);
        return *widget;
    }
    static void click(QWidget& form, const char* name) { in<QAbstractButton>(form, name).click(); }

    static void type(QWidget& form, const char* box, const std::string& text)
    {
        auto& edit = in<QLineEdit>(form, box);
        edit.selectAll();
        QTest::keyClicks(&edit, QString::fromStdString(text));
    }

    // The row of a path of this machine in the tree, every folder above it opened.
    QModelIndex rowOf(const std::string& native)
    {
        auto& tree = rig.find<QTreeView>("tvwDirectory");
        QModelIndex at = childOf(tree, {}, "C:");
        for (const std::filesystem::path& part : std::filesystem::path(native).relative_path()) {
            tree.expand(at);
            QApplication::processEvents();
            at = childOf(tree, at, part.string());
        }
        return at;
    }
    void tick(const std::string& native)
    {
        auto& tree = rig.find<QTreeView>("tvwDirectory");
        ASSERT_TRUE(tree.model()->setData(rowOf(native), Qt::Checked, Qt::CheckStateRole));
    }
    bool isTicked(const std::string& native)
    {
        return rowOf(native).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
    void typeInto(const char* box, const std::string& text)
    {
        auto& edit = rig.find<QLineEdit>(box);
        edit.setFocus();
        edit.selectAll();
        QTest::keyClicks(&edit, QString::fromStdString(text));
    }
    void showTab(int tab) { rig.find<QTabWidget>("SSTab1").setCurrentIndex(tab); }

    std::string lastMessage() const
    {
        return rig.messageBoxes.shown.empty() ? "" : rig.messageBoxes.shown.back().text;
    }
    // What the error dialog showed, one line an error.
    std::string errors() const
    {
        std::string lines;
        for (const auto& shown : rig.errorDialog.shown)
            lines += shown.txtProcName.text + ": " + shown.txtSysErrMsg.text + "\n";
        return lines;
    }

    AppRig rig;

private:
    static QModelIndex childOf(const QTreeView& tree, const QModelIndex& parent,
                               const std::string& text)
    {
        for (int i = 0; i < tree.model()->rowCount(parent); ++i) {
            const QModelIndex row = tree.model()->index(i, 0, parent);
            if (row.data().toString().toStdString() == text)
                return row;
        }
        throw std::runtime_error("no row " + text);
    }

    QObject m_stage; // what a person is about to do ends with the story
    int m_awaited = 0;
};

} // namespace vardelin::test
