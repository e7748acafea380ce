#include "app/listening/place_offer.h"

#include "gui/accessible.h"

GtkWidget* PlaceOffer::Create() {
    GtkWidget* bar = gtk_hbox_new(FALSE, 4);
    label_ = gtk_label_new("");
    gtk_label_set_ellipsize(GTK_LABEL(label_), PANGO_ELLIPSIZE_END);
    gtk_misc_set_alignment(GTK_MISC(label_), 0.0F, 0.5F);
    GtkWidget* goOn = gtk_button_new_with_mnemonic("_Go On");
    GtkWidget* anew = gtk_button_new_with_mnemonic("From the _Beginning");
    gtk_widget_set_tooltip_text(goOn, "Read on from there (Alt+G)");
    gtk_widget_set_tooltip_text(anew, "Read from the beginning (Alt+B)");
    gtk_box_pack_start(GTK_BOX(bar), label_, TRUE, TRUE, 4);
    gtk_box_pack_start(GTK_BOX(bar), goOn, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), anew, FALSE, FALSE, 0);
    g_signal_connect(goOn, "clicked", G_CALLBACK(GCGoOn), this);
    g_signal_connect(anew, "clicked", G_CALLBACK(GCBeginAnew), this);
    return bar;
}

void PlaceOffer::Open(const std::string& text) {
    isOpen_ = true;
    gtk_label_set_text(GTK_LABEL(label_), text.c_str());
    gtk_widget_set_tooltip_text(label_, text.c_str());
    listener_.reshaped();
}

void PlaceOffer::Close() {
    if (!isOpen_)
        return;
    isOpen_ = false;
    listener_.reshaped();
}

void PlaceOffer::GCGoOn(GtkWidget*, gpointer user) {
    auto* self = static_cast<PlaceOffer*>(user);
    self->Close();
    self->listener_.goOn();
}

void PlaceOffer::GCBeginAnew(GtkWidget*, gpointer user) {
    auto* self = static_cast<PlaceOffer*>(user);
    self->Close();
    self->listener_.beginAnew();
}
