#include "Layout.h"

namespace
{

// Lengths of the design.
constexpr int kMargin = 9;
constexpr int kButtonWidth = 130;
constexpr int kGap = 8;
constexpr int kTitleIndent = 20;

} // namespace

RECT Layout::ButtonPlace(Button button) const
{
    const int left = Scaled(kMargin + static_cast<int>(button) * (kButtonWidth + kGap));
    return {left, Scaled(kMargin), left + Scaled(kButtonWidth), Bar().bottom - Scaled(kMargin)};
}

RECT Layout::Title() const
{
    RECT title = Bar();
    title.left = ButtonPlace(Button::kClose).right + Scaled(kTitleIndent);
    title.right -= Scaled(kTitleIndent);
    return title;
}

bool Layout::IsOn(Button button, POINT point) const
{
    const RECT place = ButtonPlace(button);
    return ::PtInRect(&place, point) != FALSE;
}
