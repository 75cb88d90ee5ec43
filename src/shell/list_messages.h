#pragma once

#include <cstdint>

// Numbers that a list control of the system is spoken to with. Only a view on such a control sends
// them; the state conversions hold for every list.
namespace vardelin::shell {

inline constexpr std::uint32_t kSetImageList = 4099;
inline constexpr std::uint32_t kGetItem = 4101;
inline constexpr std::uint32_t kSetItem = 4102;
inline constexpr std::uint32_t kGetNextItem = 4114;
inline constexpr std::uint32_t kEnsureVisible = 4115;
inline constexpr std::uint32_t kSetItemState = 4139;

// State and mask of the call that selects an item and gives it the focus.
inline constexpr std::uint32_t kSelectedAndFocused = 3;

// The state image of an item stands in bits 12 and up of its state word.
inline constexpr std::uint32_t kStateImageUnit = 4096;
constexpr std::uint32_t stateWordOf(std::uint32_t imageIndex)
{
    return imageIndex * kStateImageUnit;
}
constexpr std::uint32_t stateImageOf(std::uint32_t stateWord)
{
    return stateWord / kStateImageUnit;
}

} // namespace vardelin::shell
