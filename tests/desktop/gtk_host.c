/* A program with the main loop of another toolkit, GTK 3, that shows an image in a window of the
 * library as well, and prints what people do to either. GTK is opened when the program runs;
 * without it the exit status is 77. usage: gtk_host before|after: which of both opens the display
 * first, GTK or the library */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "orlune_ptk.h"

typedef void (*Callback)(void);

static struct {
  int (*init)(int* count, char*** arguments);
  void* (*newWindow)(int type);
  void (*setTitle)(void* window, const char* title);
  void (*resize)(void* window, int width, int height);
  void (*move)(void* window, int left, int top);
  void* (*newButton)(const char* label);
  void (*add)(void* container, void* widget);
  void (*show)(void* widget);
  unsigned long (*connect)(void* object, const char* signal, Callback handler, void* data,
                           Callback destroy, int flags);
  unsigned (*everyFew)(unsigned milliseconds, int (*function)(void*), void* data);
  void (*run)(void);
  void (*end)(void);
} gtk;

static int Find(void* library, const char* name, void* function) {
  void* const found = dlsym(library, name);
  memcpy(function, &found, sizeof found);
  return found != NULL;
}

static int OpenToolkit(void) {
  void* library = dlopen("libgtk-3.so.0", RTLD_NOW | RTLD_GLOBAL);
  return library != NULL && Find(library, "gtk_init_check", &gtk.init) &&
         Find(library, "gtk_window_new", &gtk.newWindow) &&
         Find(library, "gtk_window_set_title", &gtk.setTitle) &&
         Find(library, "gtk_window_resize", &gtk.resize) &&
         Find(library, "gtk_window_move", &gtk.move) &&
         Find(library, "gtk_button_new_with_label", &gtk.newButton) &&
         Find(library, "gtk_container_add", &gtk.add) &&
         Find(library, "gtk_widget_show_all", &gtk.show) &&
         Find(library, "g_signal_connect_data", &gtk.connect) &&
         Find(library, "g_timeout_add", &gtk.everyFew) && Find(library, "gtk_main", &gtk.run) &&
         Find(library, "gtk_main_quit", &gtk.end);
}

static void Tell(const char* text) {
  puts(text);
  fflush(stdout);
}

static int clicks = 0;
static void ButtonClicked(void) {
  clicks++;
  Tell(clicks == 1 ? "the button" : "the button again");
  if (clicks == 2) gtk.end();
}

/* What a program does that is told of a window's events by asking for them. */
static int AskForEvents(void* data) {
  WindowEvent event;
  (void)data;
  if (ZEL_GetLastWEvent(0, &event) == 1 && event.type == WEVENT_CLICK) {
    printf("the image at %d, %d\n", event.integers[0], event.integers[1]);
    fflush(stdout);
  }
  return 1;
}

static int ShowImage(ImageRef* image) {
  if (ZEL_Create(image, IMAGE_U8, 0) != 0 || ZEL_SetImageSize(*image, 200, 150) != 0) return 0;
  if (ZEL_FillImage(*image, 0, 120, 0, 0, 0) != 0) return 0;
  return ZEL_WindDraw(*image, 0, "image", 1) == 0 && ZEL_SetActiveTool(WTOOL_POINT) == 0;
}

int main(int count, char** arguments) {
  ImageRef image = 0;
  const int isLater = count > 1 && strcmp(arguments[1], "after") == 0;
  void* window;
  void* button;
  if (!OpenToolkit()) {
    Tell("GTK is not there");
    return 77;
  }
  if (isLater && !ShowImage(&image)) return 1;
  if (!gtk.init(&count, &arguments)) return 1;
  window = gtk.newWindow(0);
  button = gtk.newButton("press");
  gtk.setTitle(window, "host");
  gtk.add(window, button);
  gtk.connect(button, "clicked", ButtonClicked, NULL, NULL, 0);
  gtk.resize(window, 200, 100);
  gtk.move(window, 500, 300);
  gtk.show(window);
  if (!isLater && !ShowImage(&image)) return 1;
  gtk.everyFew(10, AskForEvents, NULL);
  gtk.run();
  ZEL_Dispose(image);
  ZEL_CloseSys();
  Tell("the end");
  return 0;
}
