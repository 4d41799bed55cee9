def draw(figures, file):
    file.write_text("")
