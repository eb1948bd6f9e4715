#include "screen.h"

namespace desk
{
namespace
{

class NoScreen : public Screen
{
public:
	Canvas *canvas() override { return nullptr; }
	void present(const Rect &) override {}
	std::optional<Key> waitKey() override { return std::nullopt; }
};

} // namespace

std::unique_ptr<Screen> makeNoScreen()
{
	return std::make_unique<NoScreen>();
}

} // namespace desk
