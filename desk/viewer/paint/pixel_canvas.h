#ifndef DESK_PAINT_PIXEL_CANVAS_H
#define DESK_PAINT_PIXEL_CANVAS_H

#include "canvas.h"

#include <memory>
#include <string>

namespace desk
{

/// A canvas of pixels, by default of the receiver's screen, with Cairo and Pango.
class PixelCanvas : public Canvas
{
public:
	explicit PixelCanvas(int width = screenWidth, int height = screenHeight);
	~PixelCanvas() override;

	bool move(const Rect &area, int down) override;
	void pushClip(const Rect &area) override;
	void popClip() override;
	void fill(const Rect &area, const Fill &fill) override;
	void window(const Rect &outer, const Rect &client, std::string_view title,
	            const WindowStyle &style) override;
	void text(const Rect &area, std::string_view line, const TextStyle &style) override;
	void keySymbol(const Rect &area, Key key, Color color) override;

	/// The pixels: 32 bits each (blue, green, red, unused in memory order), `stride()` bytes a row.
	const unsigned char *pixels();
	int stride() const;

	/// Whether a font has letters; without one, text becomes boxes.
	static bool canDrawText();

	/// Writes a PNG. Throws an Error when the file cannot be written.
	void writePng(const std::string &path);

private:
	void drawShadow(const Rect &outer, int radius);

	struct State;
	std::unique_ptr<State> s;
};

} // namespace desk

#endif
