#pragma once

#include "editor/editor_context.h"

#include <chrono>

namespace vardelin::editor {

// The longest stretch of reading before the window has its turn: short enough that with a repaint
// behind it nobody sees the window stand still.
inline constexpr std::chrono::milliseconds kReadingTurn{25};

// The reading of one folder, as FolderReading shows it, from the constructor to the destructor.
// Between the two the window lives: whoever reads asks goOn() for every step and touches nothing of
// the tree any more once that has given false with Ending::Lost.
class ReadingTurns {
public:
    ReadingTurns(EditorContext& context, const state::TreeNode& node);
    ReadingTurns(const ReadingTurns&) = delete;
    ReadingTurns& operator=(const ReadingTurns&) = delete;
    ~ReadingTurns();

    // Lets the window handle what waits where a turn is due. False where the reading must end.
    bool goOn();
    // Likewise, but only a tree that is gone ends it: for putting back what was begun.
    bool goBack();

    FolderReading::Ending ending() const noexcept { return m_ending; }

private:
    void takeTurn();

    EditorContext& m_context;
    FolderReading::Ending m_ending = FolderReading::Ending::Whole;
};

// The turn that has just ended was the person's own: the next is due after the full time.
void startTurns(EditorContext& context);

} // namespace vardelin::editor
