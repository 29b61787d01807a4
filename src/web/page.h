// The functions of the page (web/library.js) that the glue calls. Texts cross as
// Windows-1252 bytes, which the page decodes and encodes; sizes and places are pixels.
#pragma once

#include <cstdint>

extern "C" {
// The window and its frame.
void kv_request_repaint();
void kv_repaint_begins();  // a repaint is under way: the requests made before it are met
void kv_end_program(int32_t code);
void kv_set_title(int32_t normalTitle);
void kv_resize_window(int32_t width, int32_t height);
void kv_set_check(int32_t command, int32_t checked);

// Painting: one step of a frame's plan into the back buffer, the background refilled at the
// logical size, and the frame presented on the client area.
void kv_draw(int32_t kind, int32_t x, int32_t y, int32_t width, int32_t height, int32_t x2,
             int32_t y2, int32_t what, int32_t raster, uint32_t colour, const char* text,
             int32_t textLength);
void kv_refill_background(int32_t width, int32_t height);
void kv_present(int32_t sourceWidth, int32_t sourceHeight, int32_t x, int32_t y, int32_t width,
                int32_t height, int32_t smoothing, const int32_t* black, int32_t blackCount);

// Modal boxes and dialogs. These two wait for the player: the core's call sleeps meanwhile.
int32_t kv_ask(const char* text, const char* title, uint32_t flags);
int32_t kv_dialog_wait();
void kv_dialog_open(int32_t dialogTemplate);  // the template's number in the resource script
void kv_dialog_close();
int32_t kv_dialog_checked(int32_t control);
void kv_dialog_set_checked(int32_t control, int32_t checked);
int32_t kv_dialog_text(int32_t control, char* buffer, int32_t capacity);
void kv_dialog_set_text(int32_t control, const char* text);
void kv_list_add(int32_t control, const char* text);
int32_t kv_list_selection(int32_t control);
void kv_list_set_selection(int32_t control, int32_t index);

// The save file's folder is written to the browser's storage.
void kv_store_files();
}
