// The peer of the program's start: the least of a window with the same toolkit, a menu, a text box
// and a button, without icons, settings, voices or tray.
#include <gtk/gtk.h>

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 800, 600);
    GtkWidget* menu = gtk_menu_bar_new();
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_menu_item_new_with_mnemonic("_File"));
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(scrolled), gtk_text_view_new());
    GtkWidget* box = gtk_vbox_new(FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), menu, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), scrolled, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), gtk_button_new_with_label("Read Aloud"), FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_widget_show_all(window);
    gtk_main();
}
