// The functions of the X client library that are used. They are looked for when a desktop is first
// wanted, so that the library itself needs none of it, and they stay for good then.
#pragma once

#include <xcb/xcb.h>

namespace zel {

struct X11Library {
  decltype(&xcb_connect) connect;
  decltype(&xcb_disconnect) disconnect;
  decltype(&xcb_connection_has_error) hasError;
  decltype(&xcb_get_file_descriptor) fileDescriptor;
  decltype(&xcb_get_setup) setup;
  decltype(&xcb_setup_roots_iterator) roots;
  decltype(&xcb_screen_next) screenNext;
  decltype(&xcb_screen_allowed_depths_iterator) depths;
  decltype(&xcb_depth_next) depthNext;
  decltype(&xcb_depth_visuals_iterator) visuals;
  decltype(&xcb_visualtype_next) visualNext;
  decltype(&xcb_setup_pixmap_formats) pixmapFormats;
  decltype(&xcb_setup_pixmap_formats_length) pixmapFormatCount;
  decltype(&xcb_get_maximum_request_length) requestLength;
  decltype(&xcb_generate_id) generateId;
  decltype(&xcb_flush) flush;
  decltype(&xcb_poll_for_event) pollForEvent;
  decltype(&xcb_poll_for_queued_event) pollForQueuedEvent;
  decltype(&xcb_intern_atom) internAtom;
  decltype(&xcb_intern_atom_reply) internAtomReply;
  decltype(&xcb_get_keyboard_mapping) keyboardMapping;
  decltype(&xcb_get_keyboard_mapping_reply) keyboardMappingReply;
  decltype(&xcb_get_keyboard_mapping_keysyms) keyboardMappingKeys;
  decltype(&xcb_get_keyboard_mapping_keysyms_length) keyboardMappingKeyCount;
  decltype(&xcb_create_window) createWindow;
  decltype(&xcb_destroy_window) destroyWindow;
  decltype(&xcb_map_window) mapWindow;
  decltype(&xcb_unmap_window) unmapWindow;
  decltype(&xcb_configure_window) configureWindow;
  decltype(&xcb_change_window_attributes) changeWindowAttributes;
  decltype(&xcb_create_colormap) createColormap;
  decltype(&xcb_create_pixmap) createPixmap;
  decltype(&xcb_free_pixmap) freePixmap;
  decltype(&xcb_create_gc) createGc;
  decltype(&xcb_put_image) putImage;
  decltype(&xcb_clear_area) clearArea;
  decltype(&xcb_query_pointer) queryPointer;
  decltype(&xcb_query_pointer_reply) queryPointerReply;
  decltype(&xcb_translate_coordinates) translateCoordinates;
  decltype(&xcb_translate_coordinates_reply) translateCoordinatesReply;
  decltype(&xcb_set_input_focus) setInputFocus;
  decltype(&xcb_send_event) sendEvent;
  decltype(&xcb_bell) bell;
  decltype(&xcb_change_property) changeProperty;
  decltype(&xcb_delete_property) deleteProperty;
  decltype(&xcb_get_property) getProperty;
  decltype(&xcb_get_property_reply) getPropertyReply;
  decltype(&xcb_get_property_value) propertyValue;
  decltype(&xcb_get_property_value_length) propertyValueLength;
  decltype(&xcb_set_selection_owner) setSelectionOwner;
  decltype(&xcb_get_selection_owner) getSelectionOwner;
  decltype(&xcb_get_selection_owner_reply) getSelectionOwnerReply;
  decltype(&xcb_convert_selection) convertSelection;
};

// Null where the machine has no such library.
const X11Library* X11LibraryOpen();

}  // namespace zel
