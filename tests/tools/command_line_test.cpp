#include <fstream>
#include <iterator>
#include <sstream>

#include "tool_fixture.h"

TEST_F(ToolTest, HelpAndVersionAreUnderstoodInEverySpelling) {
    for (const char* words : {"help", "--help", "-h", "-?", "help help"})
        EXPECT_EQ(expectSuccess(words).out, expectSuccess("help").out) << words;
    for (const char* words : {"version", "--version", "-v", "-V"})
        EXPECT_TRUE(expectSuccess(words).out.starts_with("moktex ")) << words;
    for (const std::string command : {"convert", "info", "compare", "formats"}) {
        const std::string help = expectSuccess("help " + command).out;
        EXPECT_TRUE(help.starts_with("Usage: moktex " + command)) << help;
        EXPECT_NE(help.find("Example"), std::string::npos) << command;
        for (const std::string words : {" --help", " -h", " @none.png --no-such-option --help"})
            EXPECT_EQ(expectSuccess(command + words).out, help) << words;
        EXPECT_NE(expectSuccess("help").out.find("\n  " + command), std::string::npos);
    }
    EXPECT_EQ(run("compare -- --help b").status, ExitStatus::inputOutput) << "a file's name";
}

TEST_F(ToolTest, ExamplesOfHelpAndReadmeRunAsPrinted) {
    std::ifstream readme(MOKTEX_SOURCE_DIR "/README.md");
    std::string text(std::istreambuf_iterator<char>(readme), {});
    for (const char* command : {"convert", "info", "compare", "formats"})
        text += expectSuccess(std::string("help ") + command).out;
    for (const char* name : {"photo", "leaf", "brick", "glow", "height", "tile", "a"})
        writePNG(std::string(name) + ".png", 32, 32, testimages::Kind::gradient);
    writePNG("b.jpg", 16, 16);
    for (const char* texture : {"leaf.mok", "bark.dds"})
        expectSuccess(std::string("convert @leaf.png -f dxt1 -o @") + texture);
    int examples = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word, commandLine;
        if (!line.starts_with("  ") || line.find("[options]") != std::string::npos || !(words >> word) || word != "moktex")
            continue;
        for (; words >> word; commandLine += word + ' ')
            if (word.find('.') != std::string::npos || word == "textures") word = '@' + word;
        const bool writes = commandLine.starts_with("convert");
        std::filesystem::remove(path("normals.png"));
        expectSuccess(commandLine + (writes ? "--overwrite" : ""));
        ++examples;
    }
    EXPECT_GT(examples, 25);
}

TEST_F(ToolTest, WrongCommandLinesAreAnsweredWithWhatIsMeant) {
    writePNG("a.png", 8, 8);
    const std::pair<const char*, const char*> cases[] = {
        // command line, message
        {"", "no command; use convert, info, compare or formats"},
        {"convrt @a.png", "convrt: no such command; did you mean convert?"},
        {"help inof", "inof: no such command; did you mean info?"},
        {"@a.png @b.png", "a.png: no such command; a file follows a command, as in 'moktex convert IN OUT'"},
        {"-f dxt1 convert", "-f: no such command; options follow the command"},
        {"xyzzy", "xyzzy: no such command; 'moktex help' lists the commands"},
        {"info", "info: no file; use 'moktex info FILE...'"},
        {"compare @a.png", "compare: two files are compared"},
        {"compare @a.png @a.png --min-psnr high", "--min-psnr high: no number of decibels"},
        {"compare @a.png @a.png --min-psnr nan", "--min-psnr nan: no number of decibels"},
        {"formats @a.png", "a.png: formats takes no files"},
        {"info ''", "info: a file's name is empty"},
        {"convert @a.png -o ''", "--output: a file's name is empty"},
        {"convert", "convert: no input; use 'moktex convert IN OUT'"},
        {"convert @a.png @b.mok --fromat dxt1", "--fromat: no such option; did you mean --format?"},
        {"convert @a.png @b.mok --color-spcae=srgb", "--color-spcae: no such option; did you mean --colour-space?"},
        {"convert @a.png @b.mok -overwrite", "-overwrite: no such option; did you mean --overwrite?"},
        {"convert @a.png @b.mok --resiz", "--resiz: no such option; did you mean --resize?"},
        {"convert @a.png @b.mok --frobnicate", "--frobnicate: no such option; 'moktex help convert' lists the options"},
        {"convert @a.png @b.mok -f", "--format: its value is missing; use --format NAME"},
        {"convert @a.png -o -y", "--output: its value is missing; use --output OUT"},
        {"convert @a.png @b.mok --quiet=yes", "--quiet=yes: the option has no value; leave out =yes"},
        {"convert @a.png @b.png --level first", "--level first: no number; use 0, 1, 2"},
        {"convert @a.png @b.png --level 4294967296", "--level 4294967296: no number"},
        {"convert @a.png @b.mok --mip-filter box", "--mip-filter box: no such choice; use one of nearest|linear|cubic"}};
    for (const auto& [commandLine, message] : cases)
        expectRefusal(commandLine, ExitStatus::commandLine, message);
}

TEST_F(ToolTest, SpellingsOfOptionsAreEqual) {
    writePNG("a.png", 8, 8, testimages::Kind::gradient);
    expectSuccess("convert @a.png @plain.mok --format dxt1 --colour-space linear --mipmaps=2 --quality 1");
    for (const char* words : {"-f dxt1 --color-space linear --mips=2 -q 1", "-fdxt1 --Colour_Space LINEAR -m2 -q1",
                              "-f=dxt1 --colour-space=Linear -m 2", "--format=DXT1 --COLOR-SPACE linear -m=2 -q fast",
                              "-f etc1 -f dxt1 --colour-space linear --mipmaps 2"}) {
        expectSuccess(std::string("convert @a.png -o @b.mok -y ") + words);
        EXPECT_EQ(read("b.mok"), read("plain.mok")) << words;
    }
    expectSuccess("convert -ym -o @b.mok -- @a.png");
    EXPECT_EQ(info("b.mok")["mipLevels"], 4);
}

TEST_F(ToolTest, InputsAreNeverTakenForTheOutput) {
    for (const char* name : {"a.png", "b.png", "c.png"})
        writePNG(name, 8, 8);
    std::filesystem::create_directory(path("in"));
    const std::pair<const char*, const char*> cases[] = {
        // command line, message
        {"convert @a.png @b.png -y", "two pictures and no output; name a folder by -o FOLDER, or replace this one by -o"},
        {"convert @a.png @b.png @c.png -y", "3 inputs and no output; name a folder by -o FOLDER"},
        {"convert @a.png", "a.png: no output; name it by -o OUT"},
        {"convert @in", "in: a folder; name the files in it"},
        {"convert @a.png @b.png -o @x.dds", "x.dds: several inputs cannot go to one file; name a folder"},
        {"convert @a.png @b.png -o @x.png", "x.png: several inputs cannot go to one file; name a folder"},
        {"convert @a.png @b.png -o -", "several inputs cannot go to standard output"},
        {"convert @a.png @new.mok --level 1", "--level selects the image to write as a PNG"},
        {"convert @a.png @new.mok --layer 0", "--layer selects the image to write as a PNG"},
        {"convert @a.png - --face 0", "--face selects the image to write as a PNG"}};
    for (const auto& [commandLine, message] : cases)
        expectRefusal(commandLine, ExitStatus::commandLine, message);
    expectSuccess("convert @a.png @new.png");
    expectSuccess("convert @a.png -o @new.png --overwrite");
    expectSuccess("convert @a.png @b.png @c.png @in");
    EXPECT_EQ(info("in/c.mok")["width"], 8);
}
