#include "DialogMessages.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace platform::dialog_messages {
namespace {

using nlohmann::json;

json NumberOrNull(const std::optional<size_t>& number) {
    return number ? json(*number) : json();
}

json MessageOf(const FormText& text) {
    return {{"text", text.text}, {"isHeading", text.isHeading}};
}

json MessageOf(const FormCheckBox& box) {
    return {{"checkBox", box.label}, {"isChecked", box.isChecked}};
}

json MessageOf(const FormList& list) {
    return {{"list", list.entries},
            {"selected", NumberOrNull(list.selected)},
            {"isSelectable", list.isSelectable}};
}

json MessageOf(const FormChoices& choices) {
    json rows = json::array();
    for (const FormChoices::Row& row : choices.rows)
        rows.push_back({{"label", row.label}, {"options", row.options}, {"selected", row.selected}});
    return {{"choices", std::move(rows)}};
}

json MessageOf(const FormButton& button) {
    return {{"button", button.number}, {"label", button.label}};
}

FormButton ToButton(const json& message) {
    return {message.at("button").get<int>(), message.at("label").get<std::string>()};
}

FormList ToList(const json& message) {
    FormList list;
    message.at("list").get_to(list.entries);
    message.at("isSelectable").get_to(list.isSelectable);
    if (const json& selected = message.at("selected"); !selected.is_null())
        list.selected = selected.get<size_t>();
    return list;
}

FormChoices ToChoices(const json& message) {
    FormChoices choices;
    for (const json& row : message.at("choices"))
        choices.rows.push_back({row.at("label").get<std::string>(),
                                row.at("options").get<std::vector<std::string>>(),
                                row.at("selected").get<size_t>()});
    return choices;
}

FormControl ToControl(const json& message) {
    if (message.contains("text"))
        return FormText{message.at("text").get<std::string>(), message.at("isHeading").get<bool>()};
    if (message.contains("checkBox"))
        return FormCheckBox{message.at("checkBox").get<std::string>(), message.at("isChecked").get<bool>()};
    if (message.contains("list"))
        return ToList(message);
    return message.contains("choices") ? FormControl(ToChoices(message)) : FormControl(ToButton(message));
}

/// What the user can change of a control; null for what is only shown.
json ValueOf(const FormControl& control) {
    if (const auto* box = std::get_if<FormCheckBox>(&control))
        return box->isChecked;
    if (const auto* list = std::get_if<FormList>(&control))
        return NumberOrNull(list->selected);
    json values;
    if (const auto* choices = std::get_if<FormChoices>(&control)) {
        values = json::array();
        for (const FormChoices::Row& row : choices->rows)
            values.push_back(row.selected);
    }
    return values;
}

bool IsIndexBelow(const json& value, size_t end) {
    return value.is_number_unsigned() && value.get<size_t>() < end;
}

bool TakeValue(const json& value, FormCheckBox& box) {
    box.isChecked = value.is_boolean() && value.get<bool>();
    return value.is_boolean();
}

bool TakeValue(const json& value, FormList& list) {
    list.selected.reset();
    if (IsIndexBelow(value, list.entries.size()))
        list.selected = value.get<size_t>();
    return list.selected || value.is_null();
}

bool TakeValue(const json& value, FormChoices& choices) {
    if (!value.is_array() || value.size() != choices.rows.size())
        return false;
    for (size_t index = 0; index < choices.rows.size(); ++index) {
        FormChoices::Row& row = choices.rows[index];
        if (!IsIndexBelow(value[index], std::max<size_t>(row.options.size(), 1)))
            return false;
        row.selected = value[index].get<size_t>();
    }
    return true;
}

template <class Unchangeable>
bool TakeValue(const json& value, Unchangeable&) {
    return value.is_null();
}

bool HasButton(const Form& form, int number) {
    const auto isIt = [=](const FormButton& button) { return button.number == number; };
    return std::any_of(form.buttons.begin(), form.buttons.end(), isIt) ||
           std::any_of(form.controls.begin(), form.controls.end(), [&](const FormControl& control) {
               const auto* button = std::get_if<FormButton>(&control);
               return button != nullptr && isIt(*button);
           });
}

constexpr std::pair<FolderAnswer::Outcome, const char*> kFolderOutcomes[] = {
    {FolderAnswer::Outcome::kCancelled, "cancelled"},
    {FolderAnswer::Outcome::kChosen, "chosen"},
    {FolderAnswer::Outcome::kNoPath, "noPath"}};

}  // namespace

std::string LineOf(const json& message) {
    return message.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

json FormRequest(const Form& form, const std::string& icon) {
    json controls = json::array(), buttons = json::array();
    for (const FormControl& control : form.controls)
        controls.push_back(std::visit([](const auto& each) { return MessageOf(each); }, control));
    for (const FormButton& button : form.buttons)
        buttons.push_back(MessageOf(button));
    return {{"show", "form"},
            {"title", form.title},
            {"icon", icon},
            {"controls", std::move(controls)},
            {"buttons", std::move(buttons)},
            {"defaultButton", form.defaultButton}};
}

Form RequestedForm(const json& request) {
    Form form;
    request.at("title").get_to(form.title);
    request.at("defaultButton").get_to(form.defaultButton);
    for (const json& control : request.at("controls"))
        form.controls.push_back(ToControl(control));
    for (const json& button : request.at("buttons"))
        form.buttons.push_back(ToButton(button));
    return form;
}

json FormAnswer(const Form& form, int button) {
    json values = json::array();
    std::transform(form.controls.begin(), form.controls.end(), std::back_inserter(values), ValueOf);
    return {{"answer", {{"button", button}, {"values", std::move(values)}}}};
}

std::optional<int> TakeFormAnswer(const json& answer, Form& form) {
    const json number = answer.is_object() ? answer.value("button", json()) : json();
    const json values = answer.is_object() ? answer.value("values", json()) : json();
    if (!number.is_number_integer() || !values.is_array() || values.size() != form.controls.size())
        return std::nullopt;
    const int button = number.get<int>();
    if (button == kFormCancelled)
        return button;
    Form chosen = form;
    for (size_t index = 0; index < values.size(); ++index) {
        if (!std::visit([&](auto& control) { return TakeValue(values[index], control); },
                        chosen.controls[index]))
            return std::nullopt;
    }
    if (!HasButton(form, button))
        return std::nullopt;
    form = std::move(chosen);
    return button;
}

json FolderAnswerMessage(const FolderAnswer& answer) {
    return {
        {"answer",
         {{"outcome", kFolderOutcomes[static_cast<size_t>(answer.outcome)].second}, {"path", answer.path}}}};
}

std::optional<FolderAnswer> TakeFolderAnswer(const json& answer) {
    const json outcome = answer.is_object() ? answer.value("outcome", json()) : json();
    const json path = answer.is_object() ? answer.value("path", json()) : json();
    for (const auto& [each, name] : kFolderOutcomes) {
        if (outcome == name && path.is_string())
            return FolderAnswer{each, path.get<std::string>()};
    }
    return std::nullopt;
}

}  // namespace platform::dialog_messages
