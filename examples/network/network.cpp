// A screen about the receiver's network: interfaces, links, addresses, the gateway, and a button that restarts the
// network after a question. An example of a plugin: see docs/plugins.md.

#include "network_table.h"

#include <toolkit.h>

#include <algorithm>
#include <cstdlib>
#include <libintl.h>
#include <string>

namespace
{

// A null domain: the host has made the plugin's catalogue the current one.
__attribute__((format_arg(1))) const char *translate(const char *text)
{
	return dcgettext(nullptr, text, LC_MESSAGES);
}

const char *nameOf(Link link)
{
	switch (link) {
	case Link::up:
		return translate("up");
	case Link::noCable:
		return translate("no cable");
	case Link::down:
		return translate("down");
	}
	return "";
}

} // namespace

class NetworkWindow : public eWindow
{
public:
	NetworkWindow();

private:
	eLabel *label(ePoint position, eSize size);
	eLabel *column(const char *heading, int left, int width);
	void button(const char *colour, const char *text, int left, void (NetworkWindow::*pressed)());

	void refresh();
	void restart();

	const int row = eSkin::getActive()->queryValue("fontsize", 20);
	// The window owns them.
	eLabel *names, *links, *addresses, *gateway;
};

NetworkWindow::NetworkWindow() : eWindow(1)
{
	setText(translate("Network"));
	cmove(ePoint(110, 120));
	cresize(eSize(500, 330));

	names = column(translate("interface"), 15, 120);
	links = column(translate("link"), 140, 100);
	addresses = column(translate("address"), 245, 250);
	gateway = label(ePoint(15, getClientRect().height() - row - 70), eSize(480, row));

	// The first button has the focus: refreshing is harmless.
	button("green", translate("refresh"), 15, &NetworkWindow::refresh);
	button("red", translate("restart"), 190, &NetworkWindow::restart);

	refresh();
}

eLabel *NetworkWindow::label(ePoint position, eSize size)
{
	eLabel *label = new eLabel(this, 0, 0, "eLabel");
	label->move(position);
	label->resize(size);
	return label;
}

// A column is one label with a line for each address, so that the rows of all columns align.
eLabel *NetworkWindow::column(const char *heading, int left, int width)
{
	label(ePoint(left, 10), eSize(width, row))->setText(heading);
	return label(ePoint(left, 20 + row), eSize(width, getClientRect().height() - 2 * row - 100));
}

void NetworkWindow::button(const char *colour, const char *text, int left, void (NetworkWindow::*pressed)())
{
	eButton *button = new eButton(this, nullptr, 1, "eButton");
	button->move(ePoint(left, getClientRect().height() - 50));
	button->resize(eSize(160, 40));
	button->setShortcut(colour);
	button->setShortcutPixmap(colour);
	button->loadDeco();
	button->setText(text);
	button->selected.connect(SigC::slot(*this, pressed));
}

void NetworkWindow::refresh()
{
	eString nameLines, linkLines, addressLines;
	for (const NetworkInterface &interface : readNetworkInterfaces()) {
		nameLines += interface.name;
		linkLines += nameOf(interface.link);
		for (const std::string &address : interface.addresses)
			addressLines += address + '\n';
		const size_t lines = std::max<size_t>(1, interface.addresses.size());
		nameLines.append(lines, '\n');
		linkLines.append(lines, '\n');
		addressLines.append(lines - interface.addresses.size(), '\n');
	}
	names->setText(nameLines.empty() ? eString(translate("nothing found")) : nameLines);
	links->setText(linkLines);
	addresses->setText(addressLines);

	const std::string address = readGateway();
	eString line;
	line.sprintf(const_cast<char *>(translate("Gateway: %s")),
	             address.empty() ? translate("none") : address.c_str());
	gateway->setText(line);
}

void NetworkWindow::restart()
{
	eMessageBox box(translate("Restart the network?"), translate("Network"),
	                eMessageBox::yes | eMessageBox::no, eMessageBox::no, 0);
	box.show();
	const int answer = box.exec();
	box.hide();
	if (answer != eMessageBox::yes)
		return;
	const bool restarted = std::system("ifdown -a && ifup -a") == 0;
	refresh();
	if (!restarted)
		gateway->setText(translate("The network could not be restarted."));
}

extern "C" int plugin_exec()
{
	NetworkWindow window;
	window.show();
	const int result = window.exec();
	window.hide();
	return result;
}
