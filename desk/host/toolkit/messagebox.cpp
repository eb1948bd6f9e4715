#include "deco.h"
#include "desk.h"
#include "ewindow.h"
#include "label.h"
#include "state.h"
#include "trace.h"

#include <algorithm>

using desk::Desk;
using desk::Trace;

namespace
{

// In pixels.
constexpr int clientWidth = 420;
constexpr int margin = 20;
constexpr int buttonWidth = 140;
constexpr int buttonHeight = 40;
constexpr int buttonGap = 20;

/// One answer; pressing it ends the box.
class AnswerBehaviour : public desk::LabelBehaviour
{
public:
	explicit AnswerBehaviour(int value) : answer(value) {}

	bool press(eWidget &widget) override
	{
		eWidget::State::of(eWidget::State::window(widget)).end(answer);
		return true;
	}

private:
	const int answer;
};

} // namespace

eMessageBox::eMessageBox(eString text, eString caption, int flags, int preset, int last)
	: eWindow(Trace::Quiet().with(1))
{
	Trace::get().constructed(this, "eMessageBox", text, caption, flags, preset, last);
	const Trace::Quiet parts;
	state->text = caption;
	state->isMessageBox = true;

	const int row = Desk::get().fontSize();
	const int textWidth = clientWidth - 2 * margin;
	const std::string wrapped = desk::wrapText(text, textWidth, row);
	const int rows = 1 + static_cast<int>(std::count(wrapped.begin(), wrapped.end(), '\n'));
	// Limits the height to the screen's for long questions and large fonts.
	const int border = state->height - clientrect.height();
	const int room = desk::screenHeight - border - 3 * margin - buttonHeight;
	const int textHeight = std::min(rows, std::max(1, room / row)) * row;

	eLabel *question = new eLabel(this, 0, 0, "eLabel");
	auto behaviour = std::make_unique<desk::LabelBehaviour>();
	behaviour->decoration = &Desk::get().skin().decoration("eLabel");
	behaviour->face = desk::Face::prose;
	behaviour->align = desk::Align::centre;
	behaviour->wraps = true;
	State &questionState = State::of(*question);
	questionState.behaviour = std::move(behaviour);
	questionState.text = text;
	State::place(*question, margin, margin, textWidth, textHeight);

	const struct
	{
		int value;
		const char *text;
	} answers[] = {{yes, Desk::get().word("Yes")}, {no, Desk::get().word("No")}};
	const auto offered = [&](int value) { return (flags & value) != 0; };
	const int count = static_cast<int>(offered(yes)) + static_cast<int>(offered(no));
	const int buttonsTop = margin + textHeight + margin;
	int x = (clientWidth - count * buttonWidth - (count - 1) * buttonGap) / 2;
	for (const auto &answer : answers) {
		if (!offered(answer.value))
			continue;
		eButton *button = new eButton(this, nullptr, 1, "eButton");
		State &buttonState = State::of(*button);
		auto press = std::make_unique<AnswerBehaviour>(answer.value);
		press->makeButton(Desk::get().skin().decoration("eButton"));
		buttonState.behaviour = std::move(press);
		buttonState.text = answer.text;
		State::place(*button, x, buttonsTop, buttonWidth, buttonHeight);
		x += buttonWidth + buttonGap;
		if (answer.value == preset || !state->focus)
			state->focus = button;
	}

	const int clientHeight = buttonsTop + buttonHeight + margin;
	const int width = clientWidth + state->width - clientrect.width();
	const int height = clientHeight + state->height - clientrect.height();
	State::place(*this, (desk::screenWidth - width) / 2, (desk::screenHeight - height) / 2, width, height);
}

eMessageBox::~eMessageBox() = default;
