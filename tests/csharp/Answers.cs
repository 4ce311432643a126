using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;
using System.Text;
using Kestova;

// Calls operations, each on a PC as it was described, and prints the answers as `kestova call OPERATION --json` does.
internal static class Answers
{
    internal static void Print(string machine, IEnumerable<string> calls)
    {
        foreach (string call in calls)
            Console.WriteLine(Answer(machine, call.Split(' ')));
    }

    private static string Answer(string machine, string[] words)
    {
        MethodInfo method = typeof(Manager).GetMethod(words[0]);
        ParameterInfo[] parameters = method.GetParameters();
        object[] arguments = Arguments(parameters, new Queue<string>(words.Skip(1)));
        using (new EmulatedPc(machine))
        using (var manager = new Manager())
        {
            if (words[0] != "Initialize")
                manager.Initialize();
            var log = new List<string>();
            manager.Logged += (sender, record) =>
                log.Add("{\"level\":" + (int)record.Level + ",\"text\":" + Json(record.Text) + "}");
            object result = method.Invoke(manager, arguments);
            IEnumerable<string> outputs = parameters.Where(parameter => parameter.IsOut).Select(
                parameter => Json(parameter.Name) + ":" + Json(arguments[parameter.Position]));
            return "{\"operation\":" + Json(words[0]) + ",\"result\":" +
                (method.ReturnType == typeof(void) ? "null" : Json(result, method.ReturnType)) +
                ",\"outputs\":{" + string.Join(",", outputs) + "},\"log\":[" + string.Join(",", log) + "]}";
        }
    }

    private static object[] Arguments(ParameterInfo[] parameters, Queue<string> words)
    {
        return parameters.Select(parameter =>
            parameter.IsOut ? null
            : words.Count > 0 ? Convert.ChangeType(words.Dequeue(), parameter.ParameterType)
            : parameter.DefaultValue).ToArray();
    }

    private static string Json(object value, Type type)
    {
        return value != null ? Json(value) : type == typeof(char?) ? "\"0\"" : "-1";
    }

    // A null is a letter: the numbers that can be null are told apart by the reader.
    private static string Json(object value)
    {
        if (value == null)
            return "null";
        if (value is Enum)
            return Convert.ToInt32(value).ToString();
        if (value is bool)
            return (bool)value ? "1" : "0";
        if (value is int)
            return value.ToString();
        var records = value as LetterPlace[];
        if (records != null)
            return "[" + string.Join(",", records.Select(record => "{\"iDiskNum\":" + record.Disk + ",\"iPartNum\":" +
                record.Partition + ",\"cDriveLetter\":" + Json(record.Letter) + "}")) + "]";
        var text = new StringBuilder("\"");
        foreach (char unit in value.ToString())
            text.AppendFormat("\\u{0:x4}", (int)unit);
        return text.Append('"').ToString();
    }
}
