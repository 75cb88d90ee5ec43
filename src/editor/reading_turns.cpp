#include "editor/reading_turns.h"

namespace vardelin::editor {

using Ending = FolderReading::Ending;

ReadingTurns::ReadingTurns(EditorContext& context, const state::TreeNode& node) : m_context(context)
{
    FolderReading& reading = m_context.form.reading;
    reading.active = true;
    reading.cancelled = false;
    reading.names = 0;
    reading.serial = node.serial();
}

ReadingTurns::~ReadingTurns()
{
    // Also where the form's record was replaced by a fresh one meanwhile.
    FolderReading& reading = m_context.form.reading;
    reading.active = false;
    reading.cancelled = false;
    reading.ending = m_ending;
}

bool ReadingTurns::goOn()
{
    if (m_ending != Ending::Whole)
        return false;
    ++m_context.form.reading.names;
    takeTurn();
    return m_ending == Ending::Whole;
}

bool ReadingTurns::goBack()
{
    if (m_ending != Ending::Lost)
        takeTurn();
    return m_ending != Ending::Lost;
}

void ReadingTurns::takeTurn()
{
    const auto now = m_context.machine.clock.steady();
    if (now - m_context.form.reading.lastTurn < kReadingTurn)
        return;
    const state::TreeView& tree = m_context.editor.tvwDirectory;
    const std::uint64_t revision = tree.structureRevision();
    m_context.machine.messageLoop.yield();
    m_context.form.reading.lastTurn = m_context.machine.clock.steady();
    if (tree.structureRevision() != revision)
        m_ending = Ending::Lost;
    else if (m_context.form.reading.cancelled && m_context.form.reading.mayCancel)
        m_ending = Ending::Cancelled;
}

void startTurns(EditorContext& context)
{
    context.form.reading.lastTurn = context.machine.clock.steady();
}

} // namespace vardelin::editor
