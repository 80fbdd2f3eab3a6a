#include "base/ui/NestedLoop.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(NestedLoops, TellOfDialogsOnceTheyAreOpenAndOnceTheyAreLeft) {
    NestedLoops& loops = NestedLoops::instance();
    QCoreApplication::processEvents(); // what other tests have left
    QSignalSpy told(&loops, &NestedLoops::dialogsChanged);
    {
        ModalDialog<QDialog> outer;
        QTimer::singleShot(0, &*outer, [&] {
            EXPECT_TRUE(loops.isDialogOpen());
            QCoreApplication::sendPostedEvents();
            EXPECT_EQ(1, told.count());
            ModalDialog<QDialog> inner(&*outer);
            QTimer::singleShot(0, &*inner, &QDialog::reject);
            EXPECT_FALSE(inner.isAccepted());
            EXPECT_TRUE(loops.isDialogOpen());
            outer->accept();
        });
        EXPECT_TRUE(outer.isAccepted());
        EXPECT_FALSE(loops.isDialogOpen());
        EXPECT_EQ(1, told.count()) << "what opened it has not returned";
    }
    {
        const NestedLoop menu(NestedLoop::Kind::Other);
        EXPECT_FALSE(loops.isDialogOpen());
        EXPECT_TRUE(loops.areRunning());
    }
    QCoreApplication::processEvents();
    ASSERT_EQ(2, told.count());
    EXPECT_TRUE(told.at(0).at(0).toBool());
    EXPECT_FALSE(told.at(1).at(0).toBool());
}

TEST(NestedLoops, WhatIsKeptIsDoneWhenTheLastIsOver) {
    NestedLoops& loops = NestedLoops::instance();
    int done = 0;
    {
        const NestedLoop outer(NestedLoop::Kind::Dialog);
        {
            const NestedLoop inner(NestedLoop::Kind::Other);
            loops.whenOver([&done] { ++done; });
        }
        QCoreApplication::processEvents();
        loops.finish();
        EXPECT_EQ(0, done);
    }
    EXPECT_EQ(0, done) << "the function that ran the loop has not returned";
    QCoreApplication::processEvents();
    EXPECT_EQ(1, done);
    loops.whenOver([&done] { ++done; });
    loops.finish();
    EXPECT_EQ(2, done);
}

TEST(ModalDialogs, CountAsCancelledWhenTheyGoWithTheirParent) {
    auto* parent = new QWidget;
    ModalDialog<QDialog> dialog(parent);
    QTimer::singleShot(0, parent, [parent] { delete parent; });
    EXPECT_FALSE(dialog.isAccepted());
    EXPECT_FALSE(dialog);
}

} // namespace
} // namespace tavix
