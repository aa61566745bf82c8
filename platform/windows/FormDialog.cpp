#include "FormDialog.h"

#include <algorithm>

#include "Desktop.h"
#include "WideText.h"

namespace platform {
namespace {

// In dialog units, as the system's own dialogs have them.
constexpr int kButtonGap = 4;
constexpr int kGapWithinKind = 4;
constexpr int kGapBetweenKinds = 7;
constexpr int kSmallestWidth = 170;
constexpr int kParagraphWidth = 240;
constexpr int kLargestWidth = 330;
constexpr int kCloseBoxWidth = 40;

// The numbers of the controls in the dialog.
constexpr int kFirstControl = 1000;
constexpr int kFirstButton = 100;

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};

int TextWidth(const DialogMetrics& metrics, const FormText& text) {
    const HFONT font = text.isHeading ? metrics.BoldFont() : metrics.Font();
    return std::min(static_cast<int>(metrics.Measure(ToWide(text.text), font).cx),
                    metrics.Horizontal(kParagraphWidth));
}

int NaturalWidth(const DialogMetrics& metrics, const FormControl& control) {
    return std::visit(
        Overloaded{
            [&](const FormText& text) { return TextWidth(metrics, text); },
            [&](const FormCheckBox& box) { return ControlStack::CheckBoxWidth(metrics, ToWide(box.label)); },
            [&](const FormList& list) { return ControlStack::ListWidth(metrics, ToWide(list.entries)); },
            [&](const FormChoices& choices) { return ChoicesPane::NaturalWidth(choices, metrics); },
            [&](const FormButton& button) {
                return ControlStack::ButtonWidth(metrics, ToWide(button.label));
            }},
        control);
}

/// In dialog units. A text belongs to what stands below it.
int GapBetween(const FormControl& above, const FormControl& below) {
    const bool belongTogether = above.index() == below.index() || std::holds_alternative<FormText>(above);
    return belongTogether ? kGapWithinKind : kGapBetweenKinds;
}

BOOL CALLBACK AppendControl(HWND window, LPARAM list) noexcept {
    try {
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

std::vector<HWND> ControlsIn(HWND dialog) {
    std::vector<HWND> controls;
    EnumChildWindows(dialog, AppendControl, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

int RowButtonWidth(const DialogMetrics& metrics, const std::vector<FormButton>& buttons) {
    int widest = 0;
    for (const FormButton& button : buttons)
        widest = std::max(widest, ControlStack::ButtonWidth(metrics, ToWide(button.label)));
    return widest;
}

}  // namespace

int FormDialog::Run(HWND owner) {
    const INT_PTR answer = RunModal(owner, ToWide(mForm.title));
    return answer > 0 ? static_cast<int>(answer) : kFormCancelled;
}

int FormDialog::Width() const {
    const int title = static_cast<int>(mMetrics->Measure(ToWide(mShown.title), mMetrics->Font()).cx) +
                      mMetrics->Horizontal(kCloseBoxWidth);
    int widest = std::max(title, mMetrics->Horizontal(kSmallestWidth));
    for (const FormControl& control : mShown.controls)
        widest = std::max(widest, NaturalWidth(*mMetrics, control));
    const auto count = static_cast<int>(mShown.buttons.size());
    const int row = (RowButtonWidth(*mMetrics, mShown.buttons) + mMetrics->Horizontal(kButtonGap)) * count;
    return std::max(std::min(widest, mMetrics->Horizontal(kLargestWidth)), row);
}

void FormDialog::OnOpen() {
    AddAll();
    CenterOverOwner(Handle());
    SetFocus(mFirst != nullptr ? mFirst : GetDlgItem(Handle(), ControlNumber(mShown.defaultButton)));
}

void FormDialog::OnScaled() {
    ReadControls(mShown);
    const std::vector<HWND> before = ControlsIn(Handle());
    const auto focus = std::find(before.begin(), before.end(), GetFocus()) - before.begin();
    RemoveControls();
    mPanes.clear();
    mButtons.clear();
    mFirst = nullptr;
    AddAll();
    const std::vector<HWND> after = ControlsIn(Handle());
    if (static_cast<size_t>(focus) < after.size())
        SetFocus(after[static_cast<size_t>(focus)]);
}

void FormDialog::AddAll() {
    mMetrics = std::make_unique<DialogMetrics>(Handle(), Dpi());
    const int left = mMetrics->Horizontal(kMargin);
    const int width = Width();
    ControlStack stack(Handle(), *mMetrics, left, mMetrics->Vertical(kMargin), width);
    AddControls(stack);
    AddButtonRow(stack);
    stack.Skip(kMargin);
    Resize(left + width + left, stack.Bottom());
    SendMessageW(Handle(), DM_SETDEFID, static_cast<WPARAM>(ControlNumber(mShown.defaultButton)), 0);
}

void FormDialog::AddControls(ControlStack& stack) {
    for (size_t index = 0; index < mShown.controls.size(); ++index) {
        const FormControl& control = mShown.controls[index];
        if (index > 0)
            stack.Skip(GapBetween(mShown.controls[index - 1], control));
        Add(stack, control, kFirstControl + static_cast<int>(index));
    }
}

void FormDialog::Add(ControlStack& stack, const FormControl& control, int number) {
    const HWND selectable =
        std::visit(Overloaded{[&](const FormText& text) -> HWND {
                                  stack.AddText(ToWide(text.text),
                                                text.isHeading ? mMetrics->BoldFont() : mMetrics->Font());
                                  return nullptr;
                              },
                              [&](const FormCheckBox& box) {
                                  return stack.AddCheckBox(number, ToWide(box.label), box.isChecked);
                              },
                              [&](const FormList& list) {
                                  const HWND made = stack.AddList(number, ToWide(list.entries), list.selected,
                                                                  list.isSelectable);
                                  return list.isSelectable ? made : nullptr;
                              },
                              [&](const FormChoices& choices) {
                                  mPanes.push_back(std::make_unique<ChoicesPane>(choices, *mMetrics));
                                  mPanes.back()->Open(Handle(), stack.Left(), stack.Bottom(), stack.Width());
                                  stack.Take(mPanes.back()->Height());
                                  return mPanes.back()->FirstControl();
                              },
                              [&](const FormButton& button) -> HWND {
                                  AddButton(stack, button);
                                  return nullptr;
                              }},
                   control);
    if (mFirst == nullptr)
        mFirst = selectable;
}

HWND FormDialog::AddButton(ControlStack& stack, const FormButton& button) {
    mButtons.push_back(button.number);
    return stack.AddButton(ControlNumber(button.number), ToWide(button.label),
                           button.number == mShown.defaultButton);
}

// At the right, all of one width.
void FormDialog::AddButtonRow(ControlStack& stack) {
    stack.Skip(kGapBetweenKinds);
    const int width = RowButtonWidth(*mMetrics, mShown.buttons);
    const int pitch = width + mMetrics->Horizontal(kButtonGap);
    int left = stack.Left() + stack.Width() + mMetrics->Horizontal(kButtonGap) -
               pitch * static_cast<int>(mShown.buttons.size());
    for (const FormButton& button : mShown.buttons) {
        ControlStack place(Handle(), *mMetrics, left, stack.Bottom(), width);
        AddButton(place, button);
        left += pitch;
    }
    stack.Take(ControlStack::ButtonHeight(*mMetrics));
}

// Escape and the close box are told as IDCANCEL.
int FormDialog::ControlNumber(int button) const {
    if (button == kFormCancelled)
        return IDCANCEL;
    const auto found = std::find(mButtons.begin(), mButtons.end(), button);
    return kFirstButton + static_cast<int>(found - mButtons.begin());
}

void FormDialog::OnCommand(int number, int notification) {
    const auto button = static_cast<size_t>(number - kFirstButton);
    if (number == IDCANCEL)
        End(kFormCancelled);
    else if (number >= kFirstControl && notification == LBN_DBLCLK)
        Finish(mShown.defaultButton);
    else if (number >= kFirstButton && button < mButtons.size() && notification == BN_CLICKED)
        Finish(mButtons[button]);
}

void FormDialog::Finish(int answer) {
    if (answer != kFormCancelled)
        ReadControls(mForm);
    End(answer);
}

void FormDialog::ReadControls(Form& form) const {
    auto pane = mPanes.begin();
    for (size_t index = 0; index < form.controls.size(); ++index) {
        const HWND item = GetDlgItem(Handle(), kFirstControl + static_cast<int>(index));
        if (auto* box = std::get_if<FormCheckBox>(&form.controls[index])) {
            box->isChecked = SendMessageW(item, BM_GETCHECK, 0, 0) == BST_CHECKED;
        } else if (auto* list = std::get_if<FormList>(&form.controls[index])) {
            const LRESULT selected = SendMessageW(item, LB_GETCURSEL, 0, 0);
            list->selected = selected >= 0 ? std::optional(static_cast<size_t>(selected)) : std::nullopt;
        } else if (auto* choices = std::get_if<FormChoices>(&form.controls[index])) {
            (*pane++)->ReadInto(*choices);
        }
    }
}

}  // namespace platform
